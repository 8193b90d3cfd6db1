// The presses in a recording.
#pragma once

#include "tools/ctl/check/device_facts.h"
#include "tools/ctl/check/operator.h"
#include "tools/ctl/check/recorded_device.h"

#include <vector>

namespace ctl {

// A press begins with a report in which a control's bit is set that was not set in the report
// before, and has all reports until the next press begins. Each press is used once, in the order of
// the recording.
class RecordedOperator final : public Operator {
public:
    // `inputs` are the recording's input reports. The others must outlive the object.
    RecordedOperator(RecordedDevice& device, const DeviceFacts& facts, const Reports& inputs);

    void begin(Action action) override;
    [[nodiscard]] State state() override { return state_; }
    [[nodiscard]] std::string reason() const override { return reason_; }
    void end() override { }
    [[nodiscard]] bool reportsEnd() const override { return true; }

    // Whether the recording has no press at all.
    [[nodiscard]] bool isEmpty() const { return presses_.empty(); }

private:
    struct RecordedPress {
        ControlId control;
        bool offHook = false; // the hook switch is on in its first report
        bool used = false;
        Reports reports = {};
    };

    // The first unused press of the control during a call, or not during one. Else the first that
    // does not have the hook switch, which has no meaning of its own then; null if there is none.
    RecordedPress* find(ControlId control, bool offHook);

    RecordedDevice& device_;
    std::vector<RecordedPress> presses_;
    State state_ = State::kBusy;
    std::string reason_;
};

} // namespace ctl
