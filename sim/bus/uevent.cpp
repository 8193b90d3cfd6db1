#include "sim/bus/uevent.h"

#include "sim/bus/file_descriptor.h"

#include <filesystem>
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

void send(const std::string& message, const std::string& socketPath)
{
    sockaddr_un to = {AF_UNIX, {}};
    if (socketPath.size() >= sizeof to.sun_path)
        return;
    socketPath.copy(to.sun_path, socketPath.size());
    const FileDescriptor from(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    // Failures are ignored: the socket of a listener that has ended remains, and one that does not
    // read its messages loses them, as it loses those of the kernel.
    sendto(from.get(), message.data(), message.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
        reinterpret_cast<const sockaddr*>(&to), sizeof to);
}

} // namespace

void broadcast(const std::string& root, const Uevent& event)
{
    constexpr std::string_view prefix = "event"; // of the name of a listener's socket
    const std::string message = messageFor(event);
    std::error_code error; // a program may have removed the directory
    auto entry = std::filesystem::directory_iterator(root, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (entry->path().filename().native().starts_with(prefix))
            send(message, entry->path().native());
    }
}

} // namespace sim
