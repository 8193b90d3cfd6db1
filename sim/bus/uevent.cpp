#include "sim/bus/uevent.h"

#include "sim/bus/file_descriptor.h"

#include <filesystem>
#include <functional>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>

namespace sim {
namespace {

// Has no "libudev" header as udevd's messages have, so libudev treats it as a message of the
// kernel, which needs no hashes.
std::string messageFor(const Uevent& event)
{
    std::string message = event.action + "@" + event.devicePath + '\0';
    for (const std::string& field : {"ACTION=" + event.action, "DEVPATH=" + event.devicePath,
             "DEVNAME=" + event.node, std::string("SUBSYSTEM=usb"),
             std::string("DEVTYPE=usb_device"), std::string("SEQNUM=1")})
        message += field + '\0';
    return message;
}

// Connected to a listener; not open if it has ended, because its socket remains.
FileDescriptor connectTo(const std::string& socketPath)
{
    sockaddr_un to = {AF_UNIX, {}};
    if (socketPath.size() >= sizeof to.sun_path)
        return FileDescriptor(-1);
    socketPath.copy(to.sun_path, socketPath.size());
    FileDescriptor from(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (connect(from.get(), reinterpret_cast<const sockaddr*>(&to), sizeof to) != 0)
        from.reset();
    return from;
}

// Calls the function with a descriptor for each listener.
void forEachListener(const std::string& root, const std::function<void(int)>& function)
{
    constexpr std::string_view prefix = "event"; // of the name of a listener's socket
    std::error_code error;                       // a program may have removed the directory
    auto entry = std::filesystem::directory_iterator(root, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (!entry->path().filename().native().starts_with(prefix))
            continue;
        if (const FileDescriptor listener = connectTo(entry->path()); listener.get() >= 0)
            function(listener.get());
    }
}

} // namespace

void broadcast(const std::string& root, const Uevent& event)
{
    forEachListener(root, [message = messageFor(event)](int listener) {
        // One that does not read its messages loses them, as it loses those of the kernel.
        send(listener, message.data(), message.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    });
}

void waitForListeners(const std::string& root)
{
    constexpr int kLimit = 5000; // milliseconds
    forEachListener(root, [](int listener) {
        pollfd room{listener, POLLOUT, 0};
        poll(&room, 1, kLimit);
    });
}

} // namespace sim
