#include "thread.h"
#include "thread_mutex.h"

#include <gtest/gtest.h>

#include <mutex>
#include <string>

namespace {

struct seen_t {
    size_t stack_size = 0;
    std::string name;
};

void look_around(void* argument)
{
    auto* seen = static_cast<seen_t*>(argument);
    pthread_attr_t attributes;
    pthread_getattr_np(pthread_self(), &attributes);
    pthread_attr_getstacksize(&attributes, &seen->stack_size);
    pthread_attr_destroy(&attributes);
    char name[16] = {};
    pthread_getname_np(pthread_self(), name, sizeof name);
    seen->name = name;
}

TEST(Thread, RunsWithTheNamePromisedAndAStackOfAtLeastAMebibyte)
{
    seen_t seen;
    rkb::thread_t thread("a name longer than fifteen");
    ASSERT_EQ(thread.start(look_around, &seen), 1);
    thread.join();
    EXPECT_EQ(seen.name, "a name longer t");
    EXPECT_GE(seen.stack_size, rkb::thread_t::min_stack_size);
}

TEST(Thread, StartingAgainJoinsTheEarlierThread)
{
    int runs = 0; // no lock: a second run beside the first would be a race
    const auto count = [](void* argument) { ++*static_cast<int*>(argument); };
    rkb::thread_t thread;
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(thread.start(count, &runs), 1);
    thread.join();
    thread.join();
    EXPECT_EQ(runs, 20);
}

struct gate_t {
    rkb::thread_mutex_recursive mutex;
    rkb::condition_t condition;
    bool open = false;
};

TEST(Condition, EndsOnASignalOrWithFalseWhenTheTimeIsOver)
{
    gate_t gate;
    rkb::thread_t thread;
    const std::lock_guard lock(gate.mutex);
    bool signalled = true;
    while (signalled)
        signalled = gate.condition.wait(gate.mutex, 1); // nobody signals: must end in false

    const auto open = [](void* argument) {
        auto* g = static_cast<gate_t*>(argument);
        const std::lock_guard guard(g->mutex);
        const std::lock_guard again(g->mutex);
        g->open = true;
        g->condition.broadcast();
    };
    ASSERT_EQ(thread.start(open, &gate), 1);
    while (!gate.open)
        ASSERT_TRUE(gate.condition.wait(gate.mutex, rkb::condition_t::no_limit));
    thread.join();
}

} // namespace
