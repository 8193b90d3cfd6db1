#include "app/quitsignals.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <csignal>

namespace {

TEST(QuitSignals, QuitTheEventLoopAndLaterTheProcess)
{
    // Two signals at once, before the event loop starts.
    const auto runEventLoop = [](int number) {
        std::signal(number, SIG_DFL); // a shell ignores SIGINT in the background
        const QuitSignals signals;
        raise(number);
        raise(number);
        std::_Exit(QCoreApplication::exec());
    };
    const auto repeat = [](int number) {
        std::signal(number, SIG_DFL);
        for (const QuitSignals signals;;)
            raise(number);
    };
    for (const int number : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) {
        EXPECT_EXIT(runEventLoop(number), testing::ExitedWithCode(0), "");
        EXPECT_EXIT(repeat(number), testing::KilledBySignal(number), "");
    }
}

TEST(QuitSignals, IgnoredSignalsStayIgnored)
{
    const auto before = std::signal(SIGHUP, SIG_IGN);
    const QuitSignals signals;
    EXPECT_EQ(std::signal(SIGHUP, before), SIG_IGN);
}

} // namespace
