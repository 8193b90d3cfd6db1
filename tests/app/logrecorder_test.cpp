#include "logrecorder.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

TEST(LogRecorder, KeepsEveryLineOfEveryThreadInItsOrder)
{
    constexpr int kThreads = 4;
    constexpr int kLines = 2500;
    LogRecorder recorder;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&recorder, t] {
            for (int i = 0; i < kLines; ++i)
                recorder.append(QStringLiteral("%1 %2").arg(t).arg(i));
        });
    for (std::thread& thread : threads)
        thread.join();

    const QStringList lines = recorder.logListModel()->stringList();
    ASSERT_EQ(lines.size(), kThreads * kLines);
    int next[kThreads] = {};
    for (const QString& line : lines) {
        const int t = line.section(QLatin1Char(' '), 0, 0).toInt();
        EXPECT_EQ(line.section(QLatin1Char(' '), 1).toInt(), next[t]++);
    }

    recorder.toggleClearLog();
    EXPECT_EQ(recorder.logListModel()->rowCount(), 0);
    recorder.append(QStringLiteral("first"));
    EXPECT_EQ(recorder.logListModel()->stringList(), QStringList(QStringLiteral("first")));
}

} // namespace
