#include "tools/ctl/meeting/event_loop.h"

#include <QDeadlineTimer>
#include <QTimer>

#include <array>

namespace ctl {
namespace {

constexpr std::chrono::milliseconds kTurn{10};

int argumentCount = 1;
char programName[] = "kelprobectl";
std::array<char*, 2> arguments{programName, nullptr};

} // namespace

EventLoop::EventLoop()
    : application_(argumentCount, arguments.data())
    , wakeUp_(signals_.fd(), QSocketNotifier::Read)
{
    // The descriptor stays readable, so that an enabled notifier would fire again and again.
    QObject::connect(
        &wakeUp_, &QSocketNotifier::activated, &wakeUp_, [this] { wakeUp_.setEnabled(false); });
}

bool EventLoop::waitUntil(
    Journal& journal, const Condition& condition, std::optional<std::chrono::milliseconds> limit)
{
    const QDeadlineTimer deadline = limit ? QDeadlineTimer(*limit) : QDeadlineTimer::Forever;
    QTimer timer; // wakes the loop
    timer.setTimerType(Qt::PreciseTimer);
    if (limit)
        timer.start(kTurn);
    for (;;) {
        journal.deliver();
        journal.check();
        if (signals_.stopped())
            throw Stopped();
        if (condition())
            return true;
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

} // namespace ctl
