#include "sim/bus/usb_bus.h"

#include "sim/bus/uevent.h"
#include "sim/bus/usbfs_server.h"
#include "sim/device/usb_descriptors.h"

#include <sys/statvfs.h>
#include <umockdev.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <vector>

namespace fs = std::filesystem;

namespace sim {
namespace {

constexpr size_t kMaxRootLength = 80; // paths of sockets below it have at most 107 characters
constexpr size_t kMinFreeBytes = 512 * size_t{1024}; // a device takes some 10 files of a block
constexpr size_t kMinFreeFiles = 100;

std::string nodeFor(int address)
{
    std::array<char, 32> node;
    snprintf(node.data(), node.size(), "/dev/bus/usb/001/%03d", address);
    return node.data();
}

std::string descriptorAttribute(const UsbDeviceInfo& info)
{
    Bytes bytes = deviceDescriptor(info);
    const Bytes configuration = configurationDescriptor(info);
    bytes.insert(bytes.end(), configuration.begin(), configuration.end());
    std::string text = toHex(bytes);
    std::erase(text, ' ');
    return text;
}

const char* megabitsPerSecond(UsbSpeed speed)
{
    switch (speed) {
    case UsbSpeed::kLow:
        return "1.5";
    case UsbSpeed::kFull:
        return "12";
    case UsbSpeed::kHigh:
        break;
    }
    return "480";
}

// What libusb reads.
std::string sysfsRecord(const UsbBus::Place& place, int address, const UsbDeviceInfo& info)
{
    return "P: " + place.sysfsPath
        + "\n"
          "E: SUBSYSTEM=usb\n"
          "E: DEVTYPE=usb_device\n"
          "E: DEVNAME="
        + place.node
        + "\n"
          "A: busnum=1\\n\n"
          "A: devnum="
        + std::to_string(address)
        + "\\n\n"
          "A: bConfigurationValue=1\\n\n"
          "A: speed="
        + std::string(megabitsPerSecond(info.speed))
        + "\\n\n"
          "H: descriptors="
        + descriptorAttribute(info) + "\n";
}

// As the kernel shows the names that it has read. An invalid name gives an empty attribute.
void writeName(const fs::path& attribute, const std::u16string& name)
{
    if (name.empty())
        return;
    static_assert(sizeof(gunichar2) == sizeof(char16_t));
    const std::vector<gunichar2> units(name.begin(), name.end());
    const std::unique_ptr<char, decltype(&g_free)> text(
        g_utf16_to_utf8(units.data(), static_cast<glong>(units.size()), nullptr, nullptr, nullptr),
        g_free);
    std::ofstream(attribute) << (text ? text.get() : "") << '\n';
}

void writeNames(const fs::path& device, const UsbDeviceInfo& info)
{
    writeName(device / "manufacturer", info.manufacturer);
    writeName(device / "product", info.product);
    writeName(device / "serial", info.serialNumber);
}

// umockdev aborts when it cannot make its directory or write a file, so check first.
void requireRoom(const std::string& directory)
{
    if (!fs::path(directory).is_absolute())
        throw std::runtime_error("TMPDIR is not an absolute path: " + directory);
    struct statvfs room = {};
    if (!fs::is_directory(directory) || access(directory.c_str(), W_OK | X_OK) != 0
        || statvfs(directory.c_str(), &room) != 0)
        throw std::runtime_error("cannot write in TMPDIR: " + directory);
    const bool limitsFiles = room.f_files > 0;
    if (room.f_bavail * room.f_frsize < kMinFreeBytes
        || (limitsFiles && room.f_favail < kMinFreeFiles))
        throw std::runtime_error("no room in TMPDIR: " + directory);
}

UMockdevTestbed* makeTestbed()
{
    requireRoom(g_get_tmp_dir());
    return umockdev_testbed_new(); // only its owner may enter its directory
}

} // namespace

UsbBus::UsbBus()
    : testbed_(makeTestbed())
{
    char* const root = umockdev_testbed_get_root_dir(testbed_.get());
    root_ = root;
    g_free(root);
    if (root_.size() > kMaxRootLength)
        throw std::runtime_error("the path of TMPDIR is too long for sockets below it: " + root_);
}

// umockdev ends the process if its directory is missing, which a program may have removed.
UsbBus::~UsbBus()
{
    std::error_code ignored;
    fs::create_directories(root_, ignored);
}

// The socket is made before the node, and stays for some time when the device is unplugged: if a
// node had no socket, all ioctls of a client that is just opening it would fail with ENOTTY.
UsbBus::Place UsbBus::plug(int port, const UsbDeviceInfo& info, const std::shared_ptr<Usbfs>& usbfs)
{
    requireRoom(root_);
    removeOldSockets();
    const int address = takeAddress();
    Place place{"/devices/usb1/1-" + std::to_string(port), nodeFor(address)};
    serveIoctls(testbed_.get(), place.node, usbfs);
    const fs::path sysfs = root_ + "/sys" + place.sysfsPath;
    usbfs->showDrivers(sysfs);
    writeNames(sysfs, info);
    makeNode(place.node, *usbfs);
    // umockdev sends the event, and ends the process if it cannot.
    if (umockdev_in_mock_environment())
        waitForListeners(root_);
    if (!umockdev_testbed_add_from_string(
            testbed_.get(), sysfsRecord(place, address, info).c_str(), nullptr))
        throw std::runtime_error("cannot add " + place.sysfsPath + " to the testbed");
    if (!umockdev_in_mock_environment())
        broadcast(root_, {"add", place.sysfsPath, place.node});
    return place;
}

void UsbBus::makeNode(const std::string& node, const Usbfs& usbfs) const
{
    const fs::path path = root_ + node;
    fs::create_directories(path.parent_path());
    fs::create_symlink(usbfs.nodePath(), path);
}

// As in USB, at most 127. libusb takes no more than 255.
int UsbBus::takeAddress()
{
    constexpr int kFirst = 2; // 1 is the root hub
    constexpr int kLast = 127;
    const auto isUsed = [this](int address) {
        const std::string node = nodeFor(address);
        return fs::is_symlink(root_ + node)
            || std::ranges::find(removedNodes_, node) != removedNodes_.end();
    };
    for (int tries = kFirst; tries <= kLast; ++tries) {
        lastAddress_ = lastAddress_ < kLast ? lastAddress_ + 1 : kFirst;
        if (!isUsed(lastAddress_))
            return lastAddress_;
    }
    if (removeOldSocket())
        return takeAddress();
    throw std::runtime_error("the USB bus has no room for another device");
}

// A client connects to the socket within open(). Sockets of the last few nodes are kept until it
// has done so.
void UsbBus::removeOldSockets()
{
    constexpr size_t kKept = 4;
    while (removedNodes_.size() > kKept)
        (void)removeOldSocket();
}

// The oldest. False if there is none.
bool UsbBus::removeOldSocket()
{
    if (removedNodes_.empty())
        return false;
    umockdev_testbed_detach_ioctl(testbed_.get(), removedNodes_.front().c_str(), nullptr);
    removedNodes_.pop_front();
    return true;
}

// Removes the node first, so that it cannot be opened any more. The sysfs directory is removed by
// hand, because umockdev_testbed_remove_device() of version 0.19 also tries to announce it and
// reports an error in a process that is not preloaded. Errors are ignored: a program may have
// removed the files.
void UsbBus::unplug(const Place& place, Usbfs& usbfs)
{
    std::error_code ignored;
    fs::remove(root_ + place.node, ignored);
    removedNodes_.push_back(place.node);
    usbfs.disconnect();
    const std::string name = fs::path(place.sysfsPath).filename();
    fs::remove(root_ + "/sys/bus/usb/devices/" + name, ignored);
    fs::remove_all(root_ + "/sys" + place.sysfsPath, ignored);
    broadcast(root_, {"remove", place.sysfsPath, place.node});
}

} // namespace sim
