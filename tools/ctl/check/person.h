// A person at the terminal acts on the device.
#pragma once

#include "tools/ctl/check/operator.h"
#include "tools/ctl/meeting/input_lines.h"

#include <chrono>

namespace ctl {

// Asks on standard error, takes answers from standard input.
class Person final : public Operator {
public:
    // `limit` is how long the person has, as shown. `lines` must outlive the object.
    Person(InputLines& lines, std::chrono::seconds limit);

    void begin(Action action) override;
    [[nodiscard]] State state() override;
    [[nodiscard]] std::string reason() const override;
    void end() override { }
    [[nodiscard]] bool reportsEnd() const override { return false; }
    [[nodiscard]] bool sees() const override { return true; }
    void ask(const std::string& question) override;

private:
    void prompt(const std::string& text);
    void take(const std::string& answer);

    InputLines& lines_;
    const std::chrono::seconds limit_;
    bool question_ = false; // else a request
    State state_ = State::kBusy;
};

// Nobody: everything is declined.
class Nobody final : public Operator {
public:
    void begin(Action action) override { static_cast<void>(action); }
    [[nodiscard]] State state() override { return State::kDeclined; }
    [[nodiscard]] std::string reason() const override;
    void end() override { }
    [[nodiscard]] bool reportsEnd() const override { return true; }
};

} // namespace ctl
