// kelprobectl next to the tools that do a part of the same.
#include "bench/program/measurements.h"
#include "bench/program/samples.h"
#include "bench/program/stage.h"

#include <atomic>
#include <stdexcept>
#include <thread>

namespace bench {
namespace {

using Command = std::vector<std::string>;

double startToExit(const Command& command)
{
    Client client(command, Probe::None);
    return static_cast<double>(client.awaitEnd() - client.startTime());
}

Samples compare(const Command& ours, const Command& peer)
{
    constexpr int rounds = 101; // of some milliseconds
    Samples samples;
    for (int round = 0; round < rounds; ++round) {
        samples.subject.push_back(startToExit(ours));
        samples.peer.push_back(startToExit(peer));
    }
    return samples;
}

std::string ids(const Speakerphone& device)
{
    std::array<char, 16> text{};
    std::snprintf(
        text.data(), text.size(), "%04x:%04x", device.info().vendorId, device.info().productId);
    return text.data();
}

struct Exchanges {
    std::vector<double> writes; // durations
    std::vector<double> reads;  // from the device's report to the return of hid_read()
};

void exchange(Speakerphone& device, Command command, Exchanges& exchanges)
{
    constexpr int count = 300;
    constexpr int warmUp = 20;
    constexpr std::chrono::milliseconds period{2};
    command.insert(command.end(), {BENCH_PEER_EXCHANGE, device.hidPath()});
    Client client(command, Probe::None);
    client.await(Moment::Ready);
    for (int i = 0; i < count; ++i) {
        client.send({});
        const auto write = static_cast<double>(client.await(Moment::Acted));
        std::this_thread::sleep_for(period); // it waits in hid_read() now
        const int64_t sent = now();
        device.inject({0x03, 0x00, 0x00});
        const auto read = static_cast<double>(client.await(Moment::Report) - sent);
        if (i < warmUp)
            continue;
        exchanges.writes.push_back(write);
        exchanges.reads.push_back(read);
    }
    client.endInput(); // the next one needs the device
}

constexpr size_t kReports = 5000;
constexpr std::chrono::milliseconds kPeriod{1};

// Of the time of a processor, while the client gets a report every millisecond.
double shareWhileReading(Speakerphone& device, const Client& client)
{
    const int64_t cpuBefore = client.cpuTime();
    const int64_t begin = now();
    auto due = std::chrono::steady_clock::now();
    for (size_t i = 0; i < kReports; ++i) {
        due += kPeriod;
        std::this_thread::sleep_until(due);
        if (!device.inject({0x03, static_cast<uint8_t>(i % 2 == 0 ? 0x08 : 0x00), 0x00}))
            throw std::runtime_error("no program reads");
        client.discardEvents();
    }
    const auto passed = static_cast<double>(now() - begin);
    return static_cast<double>(client.cpuTime() - cpuBefore) / passed;
}

} // namespace

void measureCommands(sim::UsbBus& bus)
{
    const Speakerphone device(bus, Speakerphone::Owner::Peer);
    printRow({"`kelprobectl list`, start to exit", "`lsusb`", "<= 1.5", kMilliseconds},
        compare({BENCH_KELPROBECTL, "list"}, {"/usr/bin/lsusb"}));
    printRow(
        {"`kelprobectl describe DEVICE`, start to exit", "`usbhid-dump`", "<= 1.5", kMilliseconds},
        compare({BENCH_KELPROBECTL, "describe", ids(device)},
            {"/usr/bin/usbhid-dump", "-d", ids(device)}));
}

void measureTrace(sim::UsbBus& bus)
{
    Speakerphone device(bus, Speakerphone::Owner::Peer);
    Exchanges traced;
    Exchanges bare;
    for (int round = 0; round < kRounds; ++round) {
        exchange(device, {BENCH_KELPROBECTL, "trace", "--output", "/dev/null", "--"}, traced);
        exchange(device, {}, bare);
    }
    constexpr double median = 0.5;
    const char* const beside = "the same hidapi loop without it";
    printQuantiles(
        {"`hid_write` under `kelprobectl trace`: median", beside, "<= 1.05", kMicroseconds},
        {traced.writes, bare.writes}, median);
    printQuantiles({"report to return of `hid_read` under `kelprobectl trace`: median", beside,
                       "<= 1.05", kMicroseconds},
        {traced.reads, bare.reads}, median);
}

void measureMonitor(sim::UsbBus& bus)
{
    Speakerphone device(bus, Speakerphone::Owner::Peer);
    double subject = 0;
    {
        Client monitor({BENCH_KELPROBECTL, "monitor", ids(device)}, Probe::None, Capture::Lines);
        while (!device.claimed())
            std::this_thread::sleep_for(kPeriod);
        subject = shareWhileReading(device, monitor);
        monitor.awaitLines(kReports);
        monitor.interrupt();
    }
    const BareReader bare(device);
    printRow({"`kelprobectl monitor`, 1,000 reports a second, none lost: share of a core",
                 "a bare `hid_read` loop", "< 10 %", kPercent},
        {{subject}, {shareWhileReading(device, bare)}});
}

} // namespace bench
