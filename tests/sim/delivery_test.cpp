// What a program receives of very many reports, and what is left after very many plug cycles.
#include "sim/bus/file_descriptor.h"
#include "sim/bus/uevent.h"
#include "tests/sim/hid_handle.h"
#include "tests/support/bus_test.h"

#include <libusb.h>

#include <malloc.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <thread>

namespace {

using sim::Bytes;
using sim::UrbQueue;

class Delivery : public BusTest {
protected:
    void SetUp() override
    {
        BusTest::SetUp();
        ASSERT_EQ(libusb_init(&context_), 0);
    }
    void TearDown() override
    {
        if (handle_)
            libusb_close(handle_);
        libusb_exit(context_);
        BusTest::TearDown();
    }

    // As a program does that keeps no reports of its own.
    void claim()
    {
        handle_ = libusb_open_device_with_vid_pid(context_, 0x1209, 1);
        ASSERT_TRUE(handle_);
        ASSERT_EQ(libusb_detach_kernel_driver(handle_, 0), 0);
        ASSERT_EQ(libusb_claim_interface(handle_, 0), 0);
    }

    // The next report; empty if none comes.
    Bytes read()
    {
        constexpr int kLimitMs = 10'000;
        Bytes report(64);
        int size = 0;
        const int result = libusb_interrupt_transfer(
            handle_, 0x81, report.data(), static_cast<int>(report.size()), &size, kLimitMs);
        report.resize(result == 0 ? static_cast<size_t>(size) : 0);
        return report;
    }

    libusb_context* context_ = nullptr;
    libusb_device_handle* handle_ = nullptr;
};

Bytes numbered(size_t number)
{
    return {3, sim::lowByte(number), sim::highByte(number)};
}

TEST_F(Delivery, KeepsTheOrderOf8000ReportsASecond)
{
    constexpr size_t kReports = 4000;
    sim::UsbDevice& device = plug();
    claim();
    std::thread sender([&] {
        const auto begin = std::chrono::steady_clock::now();
        for (size_t i = 0; i < kReports; ++i) {
            EXPECT_TRUE(device.inject(numbered(i)));
            std::this_thread::sleep_until(begin + (i + 1) * std::chrono::microseconds(125));
        }
    });
    for (size_t i = 0; i < kReports; ++i)
        ASSERT_EQ(read(), numbered(i)) << i;
    sender.join();
    EXPECT_TRUE(device.waitUntilRead());
}

TEST_F(Delivery, KeepsAsMuchUnreadInputAsFitsAndSaysThatTheRestIsLost)
{
    sim::UsbDevice& device = plug();
    std::vector<sim::Delivery> deliveries;
    device.setEventCallback([&](const sim::DeviceEvent& event) {
        if (event.kind == sim::DeviceEvent::Kind::kInput)
            deliveries.push_back(event.delivery);
    });
    EXPECT_FALSE(device.inject({3})) << "the kernel's driver has the interface";
    claim();
    for (size_t i = 0; i < UrbQueue::kMaxInput; ++i)
        ASSERT_TRUE(device.inject(numbered(i)));
    EXPECT_FALSE(device.inject({3}));
    EXPECT_EQ(read(), numbered(0));
    EXPECT_TRUE(device.inject({3})) << "there is room again";
    EXPECT_EQ(deliveries.front(), sim::Delivery::kNoListener);
    EXPECT_EQ(std::ranges::count(deliveries, sim::Delivery::kQueueFull), 1);

    device.unplug();
    libusb_close(std::exchange(handle_, nullptr));
    device.plug();
    claim();
    const Bytes large(UrbQueue::kMaxInputBytes / 4, 3);
    for (const bool fits : {true, true, true, true, false})
        EXPECT_EQ(device.inject(large), fits);
    EXPECT_EQ(read().size(), 64U) << "the rest comes in the next transfers";
}

std::string busDirectory()
{
    const char* const directory = getenv("UMOCKDEV_DIR");
    return directory ? directory : "";
}

// umockdev's own sender, which only a preloaded process uses, cannot do this.
TEST_F(Delivery, OfHotPlugMessagesDoesNotWaitForAProgramThatTakesNone)
{
    const std::string root = busDirectory();
    sockaddr_un name = {AF_UNIX, {}};
    (root + "/event_stopped").copy(name.sun_path, sizeof name.sun_path - 1);
    const sim::FileDescriptor stopped(socket(AF_UNIX, SOCK_DGRAM, 0));
    ASSERT_EQ(bind(stopped.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
    for (int i = 0; i < 1000; ++i)
        sim::broadcast(root, {"remove", "/devices/usb1/1-1", "/dev/bus/usb/001/002"});
    char byte = 0;
    EXPECT_GT(recv(stopped.get(), &byte, 1, MSG_DONTWAIT), 0) << "it is a listener";
}

TEST_F(Delivery, ADeviceIsUnpluggedAlsoAfterTheBusLostItsDirectory)
{
    sim::UsbDevice& device = plug();
    std::filesystem::remove_all(busDirectory());
    EXPECT_NO_THROW(device.unplug());
    EXPECT_FALSE(device.isPlugged());
    EXPECT_THROW(device.plug(), std::runtime_error);
}

template <typename Iterator>
size_t entries(const std::string& directory)
{
    const auto list = Iterator(directory);
    return static_cast<size_t>(std::distance(begin(list), end(list)));
}

// Open files, threads, files of the bus.
std::array<size_t, 3> resources()
{
    namespace fs = std::filesystem;
    return {entries<fs::directory_iterator>("/proc/self/fd"),
        entries<fs::directory_iterator>("/proc/self/task"),
        entries<fs::recursive_directory_iterator>(busDirectory())};
}

TEST_F(Delivery, LeavesNothingOfPlugCyclesUnderTraffic)
{
    sim::UsbDevice& device = plug();
    const auto cycle = [&] {
        claim();
        std::thread sender([&] {
            for (size_t i = 0; device.inject(numbered(i)); ++i)
                std::this_thread::sleep_for(std::chrono::microseconds(125));
        });
        EXPECT_EQ(read(), numbered(0));
        device.unplug();
        sender.join();
        libusb_close(std::exchange(handle_, nullptr));
        device.plug();
    };
    for (int i = 0; i < 10; ++i) // until there are as many sockets of removed nodes as are kept
        cycle();
    const auto before = resources();
    const size_t memory = mallinfo2().uordblks;
    for (int i = 0; i < 100; ++i)
        cycle();
    EXPECT_LT(mallinfo2().uordblks, memory + 100'000);
    for (int i = 0; i < 150; ++i) { // together more than libusb takes addresses
        device.unplug();
        device.plug();
        libusb_device** list = nullptr;
        EXPECT_EQ(libusb_get_device_list(context_, &list), 1); // takes the hot-plug messages
        libusb_free_device_list(list, 1);
    }
    // Files that the last cycle before had left were still being closed. A leak would leave one for
    // each cycle; a single file more was left in one of 140 runs under TSan.
    constexpr size_t kSeldomLeft = 3;
    const auto isLittleMore = [](size_t now, size_t then) { return now <= then + kSeldomLeft; };
    EXPECT_TRUE(eventually([&] { return std::ranges::equal(resources(), before, isLittleMore); }))
        << testing::PrintToString(before) << ", then " << testing::PrintToString(resources());
    claim();
}

} // namespace
