/* Loaded into the client before libumockdev-preload.so.0. Of the paths below /dev, passes only
 * those of the testbed's own nodes on to that library's open(). Without this,
 * - failed opens below /dev overflow a table of 50 entries and abort the client;
 * - ioctls on the machine's own nodes (a terminal, a GPU) fail with ENOTTY;
 * - the node, a pseudo terminal, becomes the controlling terminal of a client that leads a session,
 *   and SIGHUP ends the client at unplug;
 * - root may open a node that nobody is permitted to open.
 * Also reports to the bench that a node may not be opened, which the device cannot notice. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#define EXPORT __attribute__((visibility("default")))

typedef int (*open_function)(const char*, int, ...);

/* Does not call open(), which this library replaces. */
static int open_directly(const char* path, int flags, mode_t mode)
{
    return (int)syscall(SYS_openat, AT_FDCWD, path, flags, mode);
}

/* Writes the path of the testbed's node for `path`. Returns 0 if there is none. */
static int find_node(const char* path, char* node, size_t size)
{
    const char* root = getenv("UMOCKDEV_DIR");
    if (!root || strncmp(path, "/dev/", 5) != 0)
        return 0;
    const int length = snprintf(node, size, "%s%s", root, path);
    if (length < 0 || (size_t)length >= size)
        return 0;
    return faccessat(AT_FDCWD, node, F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

/* umockdev adds failed opens to its table, too, so check first. */
static int can_open(const char* node, int flags, mode_t mode)
{
    struct stat status;
    if (stat(node, &status) == 0 && (status.st_mode & ACCESSPERMS) == 0) {
        errno = EACCES;
        return 0;
    }
    const int fd = open_directly(node, flags, mode);
    if (fd >= 0)
        close(fd);
    return fd >= 0;
}

/* Never blocks: what the bench does not take at once is lost. Leaves errno as it is. */
static void report_refusal(const char* path)
{
    const int reason = errno;
    const char* const socket_path = getenv("KELPROBE_SIM");
    struct sockaddr_un address = {.sun_family = AF_UNIX};
    if (socket_path && strlen(socket_path) < sizeof address.sun_path) {
        strcpy(address.sun_path, socket_path);
        char line[PATH_MAX + 32];
        const int length = snprintf(line, sizeof line, "open-refused %s\n", path);
        const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        if (fd >= 0 && connect(fd, (const struct sockaddr*)&address, sizeof address) == 0)
            send(fd, line, (size_t)length, MSG_NOSIGNAL);
        if (fd >= 0)
            close(fd);
    }
    errno = reason;
}

static int open_node(const char* name, const char* path, int flags, mode_t mode)
{
    char node[PATH_MAX];
    if (find_node(path, node, sizeof node)) {
        flags |= O_NOCTTY;
        if (!can_open(node, flags, mode)) {
            if (errno == EACCES)
                report_refusal(path);
            return -1;
        }
    } else if (strncmp(path, "/dev/", 5) == 0) {
        return open_directly(path, flags, mode);
    }
    open_function next;
    void* const symbol = dlsym(RTLD_NEXT, name);
    memcpy(&next, &symbol, sizeof next); /* C cannot convert it to a function pointer */
    return next(path, flags, mode);
}

#define WRAP(name)                                                                                 \
    EXPORT int name(const char* path, int flags, ...)                                              \
    {                                                                                              \
        va_list arguments;                                                                         \
        mode_t mode = 0;                                                                           \
        va_start(arguments, flags);                                                                \
        if (flags & (O_CREAT | __O_TMPFILE))                                                       \
            mode = va_arg(arguments, mode_t);                                                      \
        va_end(arguments);                                                                         \
        return open_node(#name, path, flags, mode);                                                \
    }

/* Called by programs built with fortification, for example by libusb. */
#define WRAP_FORTIFIED(name)                                                                       \
    EXPORT int name(const char* path, int flags);                                                  \
    EXPORT int name(const char* path, int flags)                                                   \
    {                                                                                              \
        return open_node(#name, path, flags, 0);                                                   \
    }

WRAP(open)
WRAP(open64)
WRAP_FORTIFIED(__open_2)
WRAP_FORTIFIED(__open64_2)
