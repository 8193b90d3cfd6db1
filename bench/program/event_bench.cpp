// The time of one event: from the device to the log list, and from a button to the device.
#include "bench/program/measurements.h"
#include "bench/program/samples.h"
#include "bench/program/stage.h"

#include <atomic>
#include <stdexcept>

namespace bench {
namespace {

constexpr int kEvents = 1000; // on each side; the 99th percentile needs many
constexpr double kMedian = 0.5;
constexpr double kWorst = 0.99;

// From the report on the bus to the client's Report event.
double press(sim::UsbDevice& device, const Client& client)
{
    const int64_t begin = now();
    if (!device.inject({0x03, 0x08, 0x00})) // Phone Mute
        throw std::runtime_error("no program has opened the device");
    return static_cast<double>(client.await(Moment::Report) - begin);
}

class ArrivalClock {
public:
    explicit ArrivalClock(Speakerphone& device)
        : device_(device)
    {
        device_.setOutputCallback([this](const sim::Bytes&) { arrived_ = now(); });
    }
    ~ArrivalClock() { device_.setOutputCallback({}); }
    ArrivalClock(const ArrivalClock&) = delete;
    ArrivalClock& operator=(const ArrivalClock&) = delete;

    // From the time when the client begins to execute the command until the report is on the bus.
    double click(const Client& client)
    {
        client.send(Kelprobe::kMuteButton);
        const int64_t begin = client.await(Moment::Acted);
        device_.awaitOutputs(1);
        return static_cast<double>(arrived_ - begin);
    }

private:
    Speakerphone& device_;
    std::atomic<int64_t> arrived_ = 0;
};

// Waits until the window shows the new mute state and is idle.
void awaitShown(const Client& subject)
{
    subject.await(Moment::Frame);
    subject.settle();
}

} // namespace

void measurePress(sim::UsbBus& bus)
{
    Meeting meeting(bus);
    Speakerphone windowDevice(bus, Speakerphone::Owner::PeerWindow);
    const PeerWindow window(windowDevice);
    Samples samples;
    Samples windowSamples;
    for (int event = 0; event < kEvents; ++event) {
        samples.subject.push_back(press(meeting.subjectDevice, meeting.subject));
        meeting.subjectDevice.awaitOutputs(1); // the mute LED
        awaitShown(meeting.subject);
        samples.peer.push_back(press(meeting.peerDevice, meeting.peer));
        meeting.peer.settle();
        windowSamples.peer.push_back(press(windowDevice, window));
        awaitShown(window);
    }
    windowSamples.subject = samples.subject;
    const char* const beside = "a bare `hid_read_timeout` loop";
    printQuantiles(
        {"mute press, bus to log list: median", beside, "<= 1.2", kMicroseconds}, samples, kMedian);
    printQuantiles(
        {"mute press, bus to log list: 99th percentile", beside, "<= 1.5", kMicroseconds}, samples,
        kWorst);
    printQuantiles({"mute press, bus to log list: median",
                       "that loop, Kelprobe's scene over plain values", "<= 1.1", kMicroseconds},
        windowSamples, kMedian);
}

void measureClick(sim::UsbBus& bus)
{
    Meeting meeting(bus);
    ArrivalClock subjectClock(meeting.subjectDevice);
    ArrivalClock peerClock(meeting.peerDevice);
    Samples samples;
    for (int event = 0; event < kEvents; ++event) {
        samples.subject.push_back(subjectClock.click(meeting.subject));
        awaitShown(meeting.subject);
        samples.peer.push_back(peerClock.click(meeting.peer));
        meeting.peer.settle();
    }
    printQuantiles({"Mute clicked, to report on the bus: median", "a bare `hid_write`", "<= 1.1",
                       kMicroseconds},
        samples, kMedian);
}

} // namespace bench
