#include "tools/ctl/check/command_operator.h"

#include "tools/ctl/cli/failure.h"

#include <csignal>
#include <unistd.h>
#include <utility>

namespace ctl {
namespace {

// Exit statuses of the shell for a command that cannot be started, and one that is not found.
constexpr int kNotStarted = 126;
constexpr int kNotFound = 127;

} // namespace

class CommandOperator::Process final : public QProcess {
public:
    // Does nothing if the command has ended. What it left running goes on, for example to release a
    // relay later.
    void killGroup()
    {
        if (state() == QProcess::NotRunning)
            return;
        ::kill(static_cast<pid_t>(-processId()), SIGKILL);
        kill(); // in case it has not entered its group yet
        waitForFinished();
    }

    void run(const QString& script, const QString& argument)
    {
        setProcessChannelMode(QProcess::ForwardedChannels);
        setStandardInputFile(QProcess::nullDevice());
        start(QStringLiteral("/bin/sh"),
            {QStringLiteral("-c"), script, QStringLiteral("sh"), argument});
    }

protected:
    void setupChildProcess() override { setpgid(0, 0); }
};

CommandOperator::CommandOperator(std::string command, std::chrono::milliseconds limit)
    : command_(std::move(command))
    , limit_(limit)
{
}

CommandOperator::~CommandOperator()
{
    end();
}

void CommandOperator::begin(Action action)
{
    reason_.clear();
    deadline_ = std::chrono::steady_clock::now() + limit_;
    process_ = std::make_unique<Process>();
    // Standard output is kept for the results.
    process_->run(
        QStringLiteral("exec >&2\n") + QString::fromStdString(command_) + QStringLiteral(" \"$@\""),
        QString::fromUtf8(nameOf(action).word.data()));
}

Operator::State CommandOperator::state()
{
    if (process_ && process_->state() != QProcess::NotRunning
        && std::chrono::steady_clock::now() < deadline_)
        return State::kBusy;
    if (reason_.empty())
        reason_ = result();
    return reason_.empty() ? State::kDone : State::kFailed;
}

// Why the command failed; empty if it did not.
std::string CommandOperator::result() const
{
    const std::string name = "command \"" + command_ + "\" ";
    if (!process_ || process_->error() == QProcess::FailedToStart)
        throw Failure(kNoAccess, "the " + name + "could not be started");
    if (process_->state() != QProcess::NotRunning)
        return "The " + name + "took longer than " + std::to_string(limit_.count() / 1000) + " s.";
    if (process_->exitStatus() != QProcess::NormalExit)
        return "The " + name + "was ended by a signal.";
    const int status = process_->exitCode();
    if (status == kNotStarted || status == kNotFound)
        throw Failure(
            kNoAccess, "the " + name + "could not be run: exit status " + std::to_string(status));
    return status == 0 ? std::string()
                       : "The " + name + "failed with exit status " + std::to_string(status) + '.';
}

void CommandOperator::end()
{
    if (!process_)
        return;
    process_->killGroup();
    process_.reset();
}

} // namespace ctl
