#include "app/logrecorder.h"

#include <gtest/gtest.h>

#include <latch>
#include <thread>
#include <vector>

TEST(LogRecorder, KeepsEveryLineOfEveryThreadInItsOrder)
{
    constexpr int kLines = 20000;
    LogRecorder recorder;
    std::latch start(4);
    std::vector<std::jthread> threads;
    for (const char* name : {"a", "b", "c", "d"})
        threads.emplace_back([&, name] {
            start.arrive_and_wait();
            for (int i = 0; i < kLines; ++i)
                recorder.append(QStringLiteral("%1 %2").arg(name).arg(i));
        });
    threads.clear(); // joins them
    const auto* lines = recorder.logListModel();
    EXPECT_EQ(lines->rowCount(), 4 * kLines);
    for (const char* name : {"a", "b", "c", "d"}) {
        const QStringList own = lines->stringList().filter(name);
        for (int i = 0; i < kLines; ++i)
            ASSERT_EQ(own.value(i), QStringLiteral("%1 %2").arg(name).arg(i));
    }
    recorder.toggleClearLog();
    recorder.append(QStringLiteral("first"));
    EXPECT_EQ(lines->stringList(), QStringList(QStringLiteral("first")));
}
