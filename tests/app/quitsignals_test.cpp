#include "app/quitsignals.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <csignal>

namespace {

void repeatUntilKilled(int number)
{
    const QuitSignals signals;
    for (;;)
        raise(number);
}

// Two signals at once, before the event loop starts. Returns its exit status.
int runEventLoop(int number)
{
    const QuitSignals signals;
    raise(number);
    raise(number);
    return QCoreApplication::exec();
}

TEST(QuitSignals, QuitTheEventLoopAndLaterTheProcess)
{
    for (const int number : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) {
        EXPECT_EXIT(std::_Exit(runEventLoop(number)), testing::ExitedWithCode(0), "");
        EXPECT_EXIT(repeatUntilKilled(number), testing::KilledBySignal(number), "");
    }
}

TEST(QuitSignals, IgnoredSignalsStayIgnored)
{
    const auto before = std::signal(SIGHUP, SIG_IGN);
    const QuitSignals signals;
    EXPECT_EQ(std::signal(SIGHUP, before), SIG_IGN);
}

} // namespace
