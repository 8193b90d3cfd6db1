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
    struct seen_t {
        int runs; // no lock: two runs at once would be a race
        size_t stack_size;
        char name[16];
    } seen{};
    const auto look_around = [](void* argument) {
        auto* own = static_cast<seen_t*>(argument);
        pthread_attr_t attributes;
        pthread_getattr_np(pthread_self(), &attributes);
        pthread_attr_getstacksize(&attributes, &own->stack_size);
        pthread_attr_destroy(&attributes);
        pthread_getname_np(pthread_self(), own->name, sizeof own->name);
        ++own->runs;
    };
    rkb::thread_t thread("a name longer than fifteen");
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(thread.start(look_around, &seen), 1);
    thread.join();
    thread.join();
    EXPECT_EQ(seen.runs, 20);
    EXPECT_STREQ(seen.name, "a name longer t");
    EXPECT_GE(seen.stack_size, rkb::thread_t::min_stack_size);
}

TEST(ThreadDeathTest, MustBeJoinedBeforeItIsDestroyed)
{
    EXPECT_DEBUG_DEATH(
        static_cast<void>(rkb::thread_t().start([](void*) {}, nullptr)), "m_started");
}

TEST(Condition, ReturnsOnASignalOrFalseAfterItsTime)
{
    struct gate_t {
        rkb::thread_mutex_recursive mutex;
        rkb::condition_t condition;
        bool open = false;
    } gate;
    const auto open = [](void* argument) {
        auto* g = static_cast<gate_t*>(argument);
        const std::lock_guard guard(g->mutex);
        const std::lock_guard again(g->mutex);
        g->open = true;
        g->condition.broadcast();
    };
    rkb::thread_t thread;
    const std::lock_guard lock(gate.mutex);
    while (gate.condition.wait(gate.mutex, 1)) { } // nothing signals: must return false
    ASSERT_EQ(thread.start(open, &gate), 1);
    while (!gate.open)
        ASSERT_TRUE(gate.condition.wait(gate.mutex, rkb::condition_t::no_limit));
    thread.join();
}

} // namespace
