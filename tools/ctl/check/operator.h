// Who acts on the device during the tests: a person, a command or a recording.
#pragma once

#include "tools/ctl/check/action.h"

#include <string>

namespace ctl {

// For the thread of the event loop, which has to run between begin() and end(). One action at a
// time.
class Operator {
public:
    enum class State {
        kBusy,
        kDone,
        kDeclined, // it cannot be done, which is no fault of the device
        kFailed,
    };

    virtual ~Operator() = default;

    // Begins the action or asks for it. Does not block.
    virtual void begin(Action action) = 0;

    // Throws Failure if the operator does not work.
    [[nodiscard]] virtual State state() = 0;

    // Why, for kDeclined and kFailed.
    [[nodiscard]] virtual std::string reason() const = 0;

    // Ends the action, also if it is not done.
    virtual void end() = 0;

    // Whether state() becomes another than kBusy without the device's reaction. A person need not
    // say that a button was pressed.
    [[nodiscard]] virtual bool reportsEnd() const = 0;

    // Whether the action is done between begin() and the end, so that it is known how long the
    // device takes to react.
    [[nodiscard]] virtual bool isTimed() const { return false; }

    // Whether ask() may be called.
    [[nodiscard]] virtual bool sees() const { return false; }

    // Asks a question about the device. state() becomes kDone for yes, kFailed for no and kDeclined
    // for no answer.
    virtual void ask(const std::string& question) { static_cast<void>(question); }
};

} // namespace ctl
