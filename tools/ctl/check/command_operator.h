// A command acts on the device: a robot finger, a relay, or the console of a simulated device.
#pragma once

#include "tools/ctl/check/operator.h"

#include <QProcess>

#include <chrono>
#include <memory>

namespace ctl {

// Runs a shell command with the action's word as one more argument. Its standard input is empty and
// its output goes to standard error. It runs in a process group of its own, which is killed if it
// takes longer than the limit or end() comes first. A command that the shell cannot find or start
// says nothing about the device: state() throws Failure then.
class CommandOperator final : public Operator {
public:
    CommandOperator(std::string command, std::chrono::milliseconds limit);
    ~CommandOperator() override;

    void begin(Action action) override;
    [[nodiscard]] State state() override;
    [[nodiscard]] std::string reason() const override { return reason_; }
    void end() override;
    [[nodiscard]] bool reportsEnd() const override { return true; }
    [[nodiscard]] bool isTimed() const override { return true; }

private:
    class Process;

    [[nodiscard]] std::string result() const;

    const std::string command_;
    const std::chrono::milliseconds limit_;
    std::unique_ptr<Process> process_;
    std::chrono::steady_clock::time_point deadline_;
    std::string reason_;
};

} // namespace ctl
