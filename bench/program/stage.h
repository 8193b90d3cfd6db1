// Kelprobe and its peers on the simulated bus.
#pragma once

#include "bench/program/client.h"
#include "sim/bus/usb_device.h"

namespace bench {

// A simulated speakerphone. Kelprobe opens the first device that it finds, so the devices of the
// peers are plugged in later. Each owner has a different product id.
class Speakerphone : public sim::UsbDevice {
public:
    enum class Owner : uint16_t { Kelprobe, Peer, PeerWindow };

    Speakerphone(sim::UsbBus& bus, Owner owner); // plugged in

    // Waits for `count` more reports and takes them. Throws std::runtime_error if they do not
    // arrive.
    void awaitOutputs(size_t count);
};

inline constexpr size_t kOutputsAtOpening = 3; // ring, off-hook and hold LED off

// Kelprobe with its window shown and its device open.
class Kelprobe : public Client {
public:
    static std::vector<std::string> command() { return {BENCH_KELPROBE}; }

    explicit Kelprobe(Speakerphone& device);

    // Mute presses count only in a meeting. Call once.
    void startMeeting();

    // The middle of the Mute button.
    static constexpr Command kMuteButton{78, 113};

private:
    void click(const Command& button, size_t outputs);

    Speakerphone& device_;
};

// Reads, and writes on command, without a window.
class BareReader : public Client {
public:
    explicit BareReader(const Speakerphone& device);
};

// Reads with a window: Kelprobe's scene over plain values.
class PeerWindow : public Client {
public:
    explicit PeerWindow(const Speakerphone& device);
};

// Kelprobe in a meeting, and a reader, on the same bus.
struct Meeting {
    explicit Meeting(sim::UsbBus& bus);

    Speakerphone subjectDevice;
    Kelprobe subject;
    Speakerphone peerDevice;
    BareReader peer;
};

} // namespace bench
