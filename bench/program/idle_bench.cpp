// The cost of waiting. All clients wait at the same time, so that other load affects them equally.
#include "bench/program/measurements.h"
#include "bench/program/samples.h"
#include "bench/program/stage.h"

#include <array>
#include <thread>

namespace bench {
namespace {

constexpr std::chrono::seconds kWindow{5};
constexpr int kWindows = 15;

// The share of one core that each client takes in the coming window.
template <size_t count>
std::array<double, count> idleShares(const std::array<const Client*, count>& clients)
{
    std::array<double, count> shares{};
    std::array<int64_t, count> before{};
    for (size_t i = 0; i < count; ++i)
        before[i] = clients[i]->cpuTime();
    const int64_t begin = now();
    std::this_thread::sleep_for(kWindow);
    const auto passed = static_cast<double>(now() - begin);
    for (size_t i = 0; i < count; ++i)
        shares[i] = static_cast<double>(clients[i]->cpuTime() - before[i]) / passed;
    return shares;
}

} // namespace

void measureIdle(sim::UsbBus& bus)
{
    Speakerphone lost(bus, Speakerphone::Owner::Kelprobe);
    const Kelprobe unplugged(lost);
    lost.unplug();
    Speakerphone peerLost(bus, Speakerphone::Owner::Peer);
    const BareReader unpluggedPeer(peerLost);
    peerLost.unplug();
    Speakerphone device(bus, Speakerphone::Owner::Kelprobe);
    const Kelprobe subject(device);
    const Speakerphone peerDevice(bus, Speakerphone::Owner::Peer);
    const BareReader peer(peerDevice);

    const std::array<const Client*, 4> clients{&subject, &peer, &unplugged, &unpluggedPeer};
    Samples open;
    Samples afterUnplug;
    static_cast<void>(idleShares(clients)); // work left from the start
    for (int window = 0; window < kWindows; ++window) {
        const auto shares = idleShares(clients);
        open.subject.push_back(shares[0]);
        open.peer.push_back(shares[1]);
        afterUnplug.subject.push_back(shares[2]);
        afterUnplug.peer.push_back(shares[3]);
    }
    printRow(
        {"idle CPU, device open", "a bare loop of 100 ms `hid_read_timeout`", "<= 1.1", kPercent},
        open);
    printRow({"idle CPU, device unplugged", "that loop, 1 to 100 ms of sleep after a failed read",
                 "<= 0.1 % of a core", kPercent},
        afterUnplug);
}

} // namespace bench
