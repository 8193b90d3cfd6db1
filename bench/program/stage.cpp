#include "bench/program/stage.h"

#include "sim/profile/profiles.h"

#include <stdexcept>

namespace bench {
namespace {

sim::UsbDeviceInfo describe(Speakerphone::Owner owner)
{
    sim::UsbDeviceInfo info = sim::profiles().front().info;
    info.productId = static_cast<uint16_t>(info.productId + static_cast<uint16_t>(owner));
    return info;
}

} // namespace

Speakerphone::Speakerphone(sim::UsbBus& bus, Owner owner)
    : sim::UsbDevice(bus, describe(owner))
{
    plug();
}

void Speakerphone::awaitOutputs(size_t count)
{
    if (!waitForOutputs(count))
        throw std::runtime_error("an output report does not come");
    static_cast<void>(takeOutputs());
}

Kelprobe::Kelprobe(Speakerphone& device)
    : Client(command(), Probe::Preloaded)
    , device_(device)
{
    await(Moment::Frame);
    device_.awaitOutputs(kOutputsAtOpening);
}

void Kelprobe::startMeeting()
{
    constexpr Command pickupButton{199, 113};
    constexpr Command incomingButton{441, 113};
    click(incomingButton, 1);
    click(pickupButton, 2);
}

void Kelprobe::click(const Command& button, size_t outputs)
{
    send(button);
    await(Moment::Acted);
    device_.awaitOutputs(outputs);
    settle();
}

BareReader::BareReader(const Speakerphone& device)
    : Client({BENCH_PEER_HID, device.hidPath()}, Probe::None)
{
    await(Moment::Ready);
}

PeerWindow::PeerWindow(const Speakerphone& device)
    : Client({BENCH_PEER_WINDOW, "main", device.hidPath()}, Probe::Preloaded)
{
    await(Moment::Frame);
}

Meeting::Meeting(sim::UsbBus& bus)
    : subjectDevice(bus, Speakerphone::Owner::Kelprobe)
    , subject(subjectDevice)
    , peerDevice(bus, Speakerphone::Owner::Peer)
    , peer(peerDevice)
{
    subject.startMeeting();
}

} // namespace bench
