/* kelprobe-trace-preload.so: preloaded into a program, reports its calls to kelprobectl trace.
 *
 * Connects at the first call, or at the start if the program may give up root's rights later: only
 * this user may connect. A call returns when its message is in the socket's buffer, so the
 * program waits if kelprobectl cannot keep up. Without kelprobectl nothing is reported. Nothing is
 * printed and no signal is raised. There are no locks, so the program can fork at any time. */
#define _GNU_SOURCE /* program_invocation_short_name, secure_getenv() */
#include "tools/ctl/calls/trace_message.h"

#include <errno.h>
#include <fcntl.h>
#include <stdatomic.h>
#include <stdbool.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

/* The connection: file descriptor in the upper bits, inode in the lower. The program may close any
 * descriptor, and its number may then be another file, which must not be written to. A process that
 * was forked uses the connection of the earlier one. */
#define DESCRIPTOR_SHIFT 40
#define INODE_MASK ((UINT64_C(1) << DESCRIPTOR_SHIFT) - 1)
#define NOT_CONNECTED UINT64_MAX

/* Above the numbers that programs choose themselves. */
enum { FIRST_DESCRIPTOR = 200 };

static struct sockaddr_un server = {.sun_family = AF_UNIX};
static char program[TRACE_MAX_NAME];
static _Atomic(uint64_t) connection = NOT_CONNECTED;

static int descriptor_of(uint64_t socket)
{
    return (int)(socket >> DESCRIPTOR_SHIFT);
}

static uint64_t connection_of(int descriptor)
{
    struct stat status;
    if (fstat(descriptor, &status) != 0 || !S_ISSOCK(status.st_mode))
        return NOT_CONNECTED;
    return (uint64_t)descriptor << DESCRIPTOR_SHIFT | (status.st_ino & INODE_MASK);
}

static bool is_ours(uint64_t socket)
{
    return socket != NOT_CONNECTED && connection_of(descriptor_of(socket)) == socket;
}

static int open_socket(void)
{
    const int low = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    const int high = low < 0 ? -1 : fcntl(low, F_DUPFD_CLOEXEC, FIRST_DESCRIPTOR);
    if (high < 0)
        return low;
    close(low);
    return high;
}

static void stop_reporting(void)
{
    hid_calls_observe(NULL);
    const uint64_t used = atomic_exchange(&connection, NOT_CONNECTED);
    if (is_ours(used))
        close(descriptor_of(used));
}

/* Makes a connection, also to replace one that the program has closed. NOT_CONNECTED if that fails.
 */
static uint64_t make_connection(uint64_t closed)
{
    const int descriptor = open_socket();
    if (descriptor < 0)
        return NOT_CONNECTED; /* too many files are open; perhaps not at the next call */
    int result = 0;
    do
        result = connect(descriptor, (const struct sockaddr*)&server, sizeof server);
    while (result != 0 && errno == EINTR);
    if (result != 0) {
        close(descriptor);
        stop_reporting();
        return NOT_CONNECTED;
    }
    const uint64_t made = connection_of(descriptor);
    if (atomic_compare_exchange_strong(&connection, &closed, made))
        return made;
    close(descriptor);
    return closed; /* now the connection that another thread has made */
}

/* Returns whether the message was sent or cannot be sent to anybody. */
static bool send_message(const struct msghdr* message)
{
    uint64_t socket = atomic_load(&connection);
    if (!is_ours(socket))
        socket = make_connection(socket);
    if (socket == NOT_CONNECTED)
        return true;
    ssize_t sent = 0;
    do
        sent = sendmsg(descriptor_of(socket), message, MSG_NOSIGNAL);
    while (sent < 0 && errno == EINTR);
    if (sent >= 0)
        return true;
    if (errno == EBADF || errno == ENOTSOCK)
        return false; /* closed at this moment */
    stop_reporting();
    return true;
}

static uint32_t at_most(size_t size, size_t limit)
{
    return (uint32_t)(size < limit ? size : limit);
}

static void send_call(const struct hid_call* call)
{
    struct trace_header header = {
        .begin = call->begin,
        .duration = call->duration,
        .kind = (int32_t)call->kind,
        .result = call->result,
        .usb_error = call->usb_error,
        .process = (int32_t)getpid(),
        .opener = call->opener,
        .device = call->device,
        .vendor_id = call->vendor_id,
        .product_id = call->product_id,
        .path_size = call->path ? at_most(strlen(call->path), TRACE_MAX_PATH) : 0,
        .data_size = at_most(call->size, TRACE_MAX_DATA),
    };
    memcpy(header.program, program, sizeof header.program);
    /* sendmsg() does not change what these point to. */
    struct iovec parts[] = {
        {&header, sizeof header},
        {(void*)(uintptr_t)call->path, header.path_size},
        {(void*)(uintptr_t)call->data, header.data_size},
    };
    const struct msghdr message = {.msg_iov = parts, .msg_iovlen = sizeof parts / sizeof *parts};
    if (!send_message(&message))
        (void)send_message(&message);
}

__attribute__((constructor)) static void start(void)
{
    const char* const path = secure_getenv(TRACE_SOCKET_VARIABLE);
    if (!path || strlen(path) >= sizeof server.sun_path)
        return;
    memcpy(server.sun_path, path, strlen(path));
    strncpy(program, program_invocation_short_name, sizeof program - 1);
    hid_calls_observe(send_call);
    if (geteuid() == 0)
        (void)make_connection(NOT_CONNECTED);
}
