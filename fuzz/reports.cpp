// Operations and input reports against TelephonyStateMachine, compared with a second, naive one.
//
// Input: a byte of presence flags (bit i is control i of kControls), then the masks and templates
// of the eight controls, each a length byte (taken modulo 5) and its bytes, then a script. In the
// script 0 to 4 are the operations, 5 and above are followed by an input report.
#include "hid/model/TelephonyStateMachine.h"

#include <cstdlib>
#include <deque>
#include <iterator>
#include <string>

namespace {

using KX::Bytes;
using Controls = KX::TelephonyControls;

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

class Input {
public:
    explicit Input(std::span<const uint8_t> bytes)
        : bytes_(bytes.begin(), bytes.end())
    {
    }

    [[nodiscard]] bool Empty() const { return bytes_.empty(); }

    uint8_t Byte()
    {
        if (bytes_.empty())
            return 0;
        const uint8_t byte = bytes_.front();
        bytes_.pop_front();
        return byte;
    }

    Bytes String()
    {
        Bytes string(Byte() % 5u);
        for (uint8_t& byte : string)
            byte = Byte();
        return string;
    }

private:
    std::deque<uint8_t> bytes_;
};

// The output as text: events by name, reports as "*" and their bytes, then the states.
std::string Text(const Bytes& report)
{
    std::string text = "*";
    for (const uint8_t byte : report)
        text += static_cast<char>(byte);
    return text + ";";
}

class Recorder final : public KX::TelephonyStateMachine::Output {
public:
    void Notify(KX::TelephonyStateMachine::Event event) override
    {
        static constexpr const char* kNames[] = {"mute;", "unmute;", "offhook;", "hangup;"};
        text += kNames[static_cast<size_t>(event)];
    }
    void Send(const Bytes& report) override
    {
        Require(!report.empty());
        text += Text(report);
    }

    std::string text;
};

// One list of cases on plain numbers. Shares no code with TelephonyStateMachine.
class NaiveMachine {
public:
    explicit NaiveMachine(const Controls& controls)
        : c(controls)
    {
    }

    std::string Operation(unsigned operation)
    {
        switch (operation) {
        case 0: { // ring
            const int was = call;
            call = c.hasRingLed ? 3 : call;
            if (was == 1)
                return Led(c.hasRingLed, c.ringLedReport, {});
            return was == 2 && c.hasOffHookLed
                ? Led(c.hasRingLed, c.ringLedReport, c.offHookLedReport)
                : "";
        }
        case 1: // off hook
            call = 2;
            wasInCall = true;
            return RingOff() + Led(c.hasOffHookLed, c.offHookLedReport, {});
        case 2: // hang up
            call = 1;
            wasInCall = false;
            return RingOff() + Off(c.hasOffHookLed, c.offHookLedReport)
                + Off(c.hasHoldLed, c.holdLedReport);
        default: // mute, unmute
            if (call != 2 || !c.hasMuteLed)
                return "";
            mute = operation == 3 ? 1 : 2;
            if (mute == 1)
                return Led(true, c.muteLedReport, c.offHookLedReport);
            return SameId(c.muteLedReport, c.offHookLedReport) ? Text(c.offHookLedReport)
                                                               : Off(true, c.muteLedReport);
        }
    }

    std::string Report(const Bytes& report)
    {
        const bool hook = c.hasHookSwitch && Has(report, c.hookSwitchMask);
        const bool flash = c.hasFlash && Has(report, c.flashMask);
        const bool busy = c.hasLineBusy && Has(report, c.lineBusyMask);
        if (call == 2 && c.hasPhoneMute && Has(report, c.phoneMuteMask))
            return mute == 1 ? "unmute;" + Operation(4) : "mute;" + Operation(3);
        if (call != 3 || (wasInCall && !(hook && (flash || busy))))
            return "";
        if (!wasInCall && !hook) {
            call = 1;
            return "hangup;" + RingOff() + Off(c.hasOffHookLed, c.offHookLedReport);
        }
        const bool refused = wasInCall && !flash;
        return (refused ? "hangup;" : "offhook;") + Operation(1);
    }

    int call = 0;
    int mute = 0;

private:
    static bool SameId(const Bytes& a, const Bytes& b)
    {
        return !a.empty() && !b.empty() && a[0] == b[0];
    }

    static bool Has(const Bytes& report, const Bytes& mask)
    {
        bool has = report.size() == mask.size();
        for (size_t i = 0; has && i < mask.size(); ++i)
            has = (mask[i] & ~report[i]) == 0;
        return has;
    }

    static std::string Led(bool present, Bytes report, const Bytes& added)
    {
        for (size_t i = 1; SameId(report, added) && i < report.size() && i < added.size(); ++i)
            report[i] = static_cast<uint8_t>(report[i] | added[i]);
        return present ? Text(report) : "";
    }

    static std::string Off(bool present, const Bytes& report)
    {
        Bytes off(report.size());
        off[0] = report[0];
        return present ? Text(off) : "";
    }

    std::string RingOff() const { return Off(c.hasRingLed, c.ringLedReport); }

    const Controls& c;
    bool wasInCall = false;
};

constexpr struct {
    bool Controls::*has;
    Bytes Controls::*report;
    bool output;
} kControls[] = {
    {&Controls::hasHookSwitch, &Controls::hookSwitchMask, false},
    {&Controls::hasFlash, &Controls::flashMask, false},
    {&Controls::hasLineBusy, &Controls::lineBusyMask, false},
    {&Controls::hasPhoneMute, &Controls::phoneMuteMask, false},
    {&Controls::hasRingLed, &Controls::ringLedReport, true},
    {&Controls::hasOffHookLed, &Controls::offHookLedReport, true},
    {&Controls::hasMuteLed, &Controls::muteLedReport, true},
    {&Controls::hasHoldLed, &Controls::holdLedReport, true},
};

Controls ReadControls(Input& input)
{
    Controls controls;
    const unsigned flags = input.Byte();
    for (size_t i = 0; i < std::size(kControls); ++i) {
        const auto& [has, report, output] = kControls[i];
        controls.*has = flags >> i & 1;
        controls.*report = input.String();
        if (output && (controls.*report).empty())
            (controls.*report).push_back(0); // a template that was found has its report id
    }
    controls.hasMuteLed = controls.hasMuteLed && controls.hasOffHookLed;
    return controls;
}

void Perform(KX::TelephonyStateMachine& machine, unsigned operation)
{
    switch (operation) {
    case 0:
        return machine.Ring();
    case 1:
        return machine.OffHook();
    case 2:
        return machine.HangUp();
    case 3:
        return machine.Mute();
    default:
        return machine.Unmute();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input({data, size});
    const Controls controls = ReadControls(input);
    NaiveMachine naive(controls);
    Recorder recorder;
    KX::TelephonyStateMachine machine(recorder);
    machine.SetControls(controls);
    while (!input.Empty()) {
        const unsigned kind = input.Byte() % 12u;
        std::string expected;
        recorder.text.clear();
        if (kind < 5) {
            expected = naive.Operation(kind);
            Perform(machine, kind);
        } else {
            const Bytes report = input.String();
            expected = naive.Report(report);
            machine.HandleReport(report);
        }
        Require(recorder.text == expected);
        Require(static_cast<int>(machine.CallState()) == naive.call);
        Require(static_cast<int>(machine.MuteState()) == naive.mute);
    }
    return 0;
}
