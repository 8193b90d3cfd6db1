#include "base/src/util/local_time.h"
#include "base/src/util/thread.h"
#include "base/src/util/thread_mutex.h"

#include <gtest/gtest.h>

#include <ctime>
#include <mutex>

namespace {

TEST(LocalTime, HasTheYearInFullAndCountsMonthsFromOne)
{
    const time_t before = time(nullptr);
    const rkb::local_time_t now = rkb::local_time();
    tm parts{};
    localtime_r(&before, &parts); // for its daylight saving time
    parts.tm_year = now.year - 1900;
    parts.tm_mon = now.month - 1;
    parts.tm_mday = now.day;
    parts.tm_hour = now.hour;
    parts.tm_min = now.minute;
    parts.tm_sec = now.second;
    EXPECT_GE(mktime(&parts), before);
    EXPECT_LE(mktime(&parts), time(nullptr) + 1); // time() may be a little late
    EXPECT_EQ(parts.tm_wday, now.weekday);
}

TEST(Thread, HasItsNameAndStackAndStartingAgainJoinsTheEarlierThread)
{
    static int runs = 0; // no lock: two runs at once would be a race
    static size_t stack_size = 0;
    static char name[16] = "";
    const auto look_around = [](void*) {
        pthread_attr_t attributes;
        pthread_getattr_np(pthread_self(), &attributes);
        pthread_attr_getstacksize(&attributes, &stack_size);
        pthread_attr_destroy(&attributes);
        pthread_getname_np(pthread_self(), name, sizeof name);
        ++runs;
    };
    rkb::thread_t thread("a name longer than fifteen");
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(thread.start(look_around, nullptr), 1);
    thread.join();
    thread.join();
    EXPECT_EQ(runs, 20);
    EXPECT_STREQ(name, "a name longer t");
    EXPECT_GE(stack_size, rkb::thread_t::min_stack_size);
}

#ifndef NDEBUG
TEST(ThreadDeathTest, MustBeJoinedBeforeItIsDestroyed)
{
    EXPECT_DEATH(static_cast<void>(rkb::thread_t().start([](void*) {}, nullptr)), "m_started");
}
#endif

TEST(Condition, ReturnsOnASignalOrFalseAfterItsTime)
{
    static rkb::thread_mutex_recursive mutex;
    static rkb::condition_t condition;
    static bool open = false;
    rkb::thread_t thread;
    const std::lock_guard lock(mutex);
    while (condition.wait(mutex, 1)) { } // nothing signals: must return false
    const auto signal = [](void*) {
        const std::lock_guard guard(mutex);
        const std::lock_guard again(mutex);
        open = true;
        condition.broadcast();
    };
    ASSERT_EQ(thread.start(signal, nullptr), 1);
    while (!open)
        ASSERT_TRUE(condition.wait(mutex, rkb::condition_t::no_limit));
    thread.join();
}

} // namespace
