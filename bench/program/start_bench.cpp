// The time until a window is shown, and its memory.
#include "bench/program/measurements.h"
#include "bench/program/samples.h"
#include "bench/program/stage.h"

#include <array>
#include <thread>

namespace bench {
namespace {

constexpr size_t kPeers = 3;
// The last two show where the difference to the first one comes from.
constexpr std::array<const char*, kPeers> kScenes{"peer_window", "peer_text", "main"};
using AgainstPeers = std::array<Samples, kPeers>;

std::vector<std::string> window(const char* scene)
{
    return {BENCH_PEER_WINDOW, scene};
}

std::vector<std::string> readingWindow(const char* scene, const Speakerphone& device)
{
    return {BENCH_PEER_WINDOW, scene, device.hidPath()};
}

double firstFrame(const Client& client)
{
    return static_cast<double>(client.await(Moment::Frame) - client.startTime());
}

double startTime(const std::vector<std::string>& command)
{
    return firstFrame(Client(command, Probe::Preloaded));
}

void measureStart()
{
    AgainstPeers samples;
    for (int round = 0; round < kRounds; ++round) {
        const double subject = startTime(Kelprobe::command());
        for (size_t i = 0; i < kPeers; ++i) {
            samples[i].subject.push_back(subject);
            samples[i].peer.push_back(startTime(window(kScenes[i])));
        }
    }
    const char* const what = "start to the first frame";
    printRow({what, "a bare window with the same imports", "<= 1.05", kMilliseconds}, samples[0]);
    printRow({what, "that with a line of text", "", kMilliseconds}, samples[1]);
    printRow({what, "Kelprobe's scene over plain values", "", kMilliseconds}, samples[2]);
}

// The next client cannot claim the device before that.
void awaitReleased(const Speakerphone& device)
{
    while (device.claimed())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

double residentSize(Speakerphone& device, const std::vector<std::string>& command, size_t outputs)
{
    double size = 0;
    {
        const Client client(command, Probe::Preloaded);
        client.await(Moment::Frame);
        device.awaitOutputs(outputs);
        size = static_cast<double>(client.residentBytes());
    }
    awaitReleased(device);
    return size;
}

void measureMemory(sim::UsbBus& bus)
{
    Speakerphone device(bus, Speakerphone::Owner::Kelprobe);
    AgainstPeers samples;
    for (int round = 0; round < kRounds; ++round) {
        const double subject = residentSize(device, Kelprobe::command(), kOutputsAtOpening);
        for (size_t i = 0; i < kPeers; ++i) {
            samples[i].subject.push_back(subject);
            samples[i].peer.push_back(residentSize(device, readingWindow(kScenes[i], device), 0));
        }
    }
    const char* const what = "resident memory, device selected";
    printRow({what, "the bare window and a hidapi read loop", "<= 1.10", kMebibytes}, samples[0]);
    printRow({what, "that with a line of text", "", kMebibytes}, samples[1]);
    printRow({what, "Kelprobe's scene and that loop", "", kMebibytes}, samples[2]);
}

} // namespace

void measureStartAndMemory(sim::UsbBus& bus)
{
    measureStart();
    measureMemory(bus);
}

} // namespace bench
