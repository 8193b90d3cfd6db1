#include "base/src/util/local_time.h"
#include "base/src/util/thread.h"
#include "base/src/util/thread_mutex.h"

#include <gtest/gtest.h>

#include <ctime>
#include <mutex>

namespace {

TEST(LocalTime, HasTheYearInFullAndCountsMonthsFromOne)
{
    time_t second = 0;
    rkb::local_time_t now{};
    do { // until no second has ended in between
        second = time(nullptr);
        now = rkb::local_time();
    } while (second != time(nullptr));
    tm parts{};
    localtime_r(&second, &parts);
    char expected[64];
    char found[64];
    strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S %w", &parts);
    snprintf(found, sizeof found, "%d-%02d-%02d %02d:%02d:%02d %d", now.year, now.month, now.day,
        now.hour, now.minute, now.second, now.weekday);
    EXPECT_STREQ(found, expected);
}

#ifndef NDEBUG
TEST(ThreadDeathTest, MustBeJoinedBeforeItIsDestroyed)
{
    const auto destroy_a_started_thread = [] {
        rkb::thread_t thread;
        static_cast<void>(thread.start([](void*) {}, nullptr));
    };
    EXPECT_DEATH(destroy_a_started_thread(), "m_started");
}
#endif

TEST(Thread, HasItsNameAndAStackOfAtLeastAMebibyte)
{
    struct seen_t {
        pthread_attr_t attributes;
        char name[16];
    } seen{};
    const auto look_around = [](void* argument) {
        auto* own = static_cast<seen_t*>(argument);
        pthread_getattr_np(pthread_self(), &own->attributes);
        pthread_getname_np(pthread_self(), own->name, sizeof own->name);
    };
    rkb::thread_t thread("a name longer than fifteen");
    ASSERT_EQ(thread.start(look_around, &seen), 1);
    thread.join();
    size_t stack_size = 0;
    pthread_attr_getstacksize(&seen.attributes, &stack_size);
    pthread_attr_destroy(&seen.attributes);
    EXPECT_STREQ(seen.name, "a name longer t");
    EXPECT_GE(stack_size, rkb::thread_t::min_stack_size);
}

TEST(Thread, StartingAgainJoinsTheEarlierThread)
{
    int runs = 0; // no lock: two runs at once would be a race
    rkb::thread_t thread;
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(thread.start([](void* count) { ++*static_cast<int*>(count); }, &runs), 1);
    thread.join();
    thread.join();
    EXPECT_EQ(runs, 20);
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
