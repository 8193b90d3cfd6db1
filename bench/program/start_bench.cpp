// How long a window takes to show, and what it takes of memory.
#include "measurements.h"
#include "samples.h"
#include "stage.h"

#include <thread>

namespace bench {
namespace {

std::vector<std::string> bareWindow()
{
    return {BENCH_PEER_WINDOW};
}

std::vector<std::string> readingWindow(const Speakerphone& device)
{
    return {BENCH_PEER_WINDOW, device.hidPath()};
}

double firstFrame(const Client& client)
{
    return static_cast<double>(client.await(Moment::Frame) - client.startTime());
}

double timeWithoutDevice(const std::vector<std::string>& command)
{
    return firstFrame(Client(command, Probe::Preloaded));
}

// The next client cannot claim the device before this one's connection is seen to be closed.
void awaitReleased(const Speakerphone& device)
{
    while (device.claimed())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

struct Shown {
    double time;
    double memory;
};

Shown showWithDevice(Speakerphone& device, const std::vector<std::string>& command, size_t outputs)
{
    Shown shown{};
    {
        const Client client(command, Probe::Preloaded);
        shown.time = firstFrame(client);
        device.awaitOutputs(outputs);
        shown.memory = static_cast<double>(client.residentBytes());
    }
    awaitReleased(device);
    return shown;
}

} // namespace

void measureStartAndMemory(sim::UsbBus& bus)
{
    Samples bare;
    for (int round = 0; round < kRounds; ++round) {
        bare.subject.push_back(timeWithoutDevice(Kelprobe::command()));
        bare.peer.push_back(timeWithoutDevice(bareWindow()));
    }
    Speakerphone device(bus, Speakerphone::Owner::Kelprobe);
    Samples time;
    Samples memory;
    for (int round = 0; round < kRounds; ++round) {
        const Shown subject = showWithDevice(device, Kelprobe::command(), kOutputsAtOpening);
        const Shown peer = showWithDevice(device, readingWindow(device), 0);
        time.subject.push_back(subject.time);
        time.peer.push_back(peer.time);
        memory.subject.push_back(subject.memory);
        memory.peer.push_back(peer.memory);
    }
    printRow({"start to the first frame, no device", "a bare window with the same imports",
                 "<= 1.05", kMilliseconds},
        bare);
    printRow({"start to the first frame, device opened", "that window, opening the device", "",
                 kMilliseconds},
        time);
    printRow({"resident memory, device selected", "that window plus a bare hidapi read loop",
                 "<= 1.10", kMebibytes},
        memory);
}

} // namespace bench
