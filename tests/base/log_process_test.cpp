// Logging at the edges of a process. Each test uses child processes, so that every one of them
// begins without a logging control.
#include "tests/base/log_fixture.h"
#include "tests/support/child_process.h"

#include <atomic>
#include <barrier>
#include <climits>
#include <new>
#include <set>
#include <sstream>
#include <thread>
#include <unistd.h>

static std::atomic<int> allocations_left = INT_MAX;

// Not inlined: the compiler would take the calls of malloc() and free() for mismatched pairs.
[[gnu::noinline]] void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    return allocations_left-- > 0 ? malloc(size) : nullptr;
}
[[gnu::noinline]] void* operator new(size_t size)
{
    if (void* memory = operator new(size, std::nothrow))
        return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept
{
    free(memory);
}

namespace {

using rkb::log_control_t;
using test::passesInChild;

constexpr const char* exit_lines = "log_control_t::release()\nlog_control_t::~log_control_t()\n";
constexpr int thread_count = 8;
constexpr int lines_per_thread = 500;

std::string line_of(int thread, int number)
{
    return "line " + std::to_string(thread) + " " + std::to_string(number) + std::string(200, 'x');
}

// Module 0 passes without registration, so the first lines race to create the control and to bind
// the sinks.
void log_from_threads()
{
    std::barrier all_at_once(thread_count);
    std::vector<std::jthread> threads;
    threads.reserve(thread_count);
    for (int thread = 0; thread < thread_count; ++thread)
        threads.emplace_back([&all_at_once, thread] {
            all_at_once.arrive_and_wait();
            for (int i = 0; i < lines_per_thread; ++i)
                RKB_LOG(0, rkb::log_info, line_of(thread, i) << "\n");
        });
}

// Every line of every thread is there once and whole.
void expect_all_lines(const std::string& directory)
{
    std::multiset<std::string> expected;
    for (int i = 0; i < thread_count * lines_per_thread; ++i)
        expected.insert(line_of(i / lines_per_thread, i % lines_per_thread));
    std::multiset<std::string> found;
    std::istringstream messages(messages_of(logs_in(directory)));
    for (std::string message; std::getline(messages, message);)
        found.insert(message);
    EXPECT_TRUE(found == expected) << found.size(); // without printing them
}

// Starts threads that log until the control ends, and waits until they have begun.
void log_until_exit(int threads)
{
    static std::atomic<bool> all_are_there = false;
    static std::atomic<int> lines = 0;
    for (int i = 0; i < threads; ++i)
        std::thread([] {
            all_are_there.wait(false);
            for (; log_control_t::instance(); ++lines)
                RKB_LOG(0, rkb::log_info, "another line\n");
        }).detach();
    all_are_there = true;
    all_are_there.notify_all();
    while (lines < 100)
        std::this_thread::yield();
}

class LogProcess : public testing::Test {
protected:
    void SetUp() override { setenv("RKB_HOME", m_directory.path().c_str(), 1); }

    const test::TempDirectory m_directory;
    const std::string m_logs = m_directory.path() + "logs";
};

struct StaticSink final : rkb::log_it {
    ~StaticSink() override { is_destroyed = true; }
    uint32_t write(uint32_t, uint32_t, const char*, size_t) override
    {
        if (is_destroyed)
            _exit(EXIT_FAILURE);
        return 0;
    }
    static inline bool is_destroyed = false;
};

TEST_F(LogProcess, TheLinesOfTheExitGoToTheLogFileButToNoStaticSinkAndBeginNoLog)
{
    for (const bool has_file : {true, false}) {
        EXPECT_TRUE(passesInChild([&] {
            static StaticSink sink; // destroyed before the control is closed
            rkb::register_logger_handle(&sink, 3);
            rkb::register_logger(1, "UTIL", 5, nullptr, 3);
            RKB_LOG(1, rkb::log_info, "binds the sinks\n");
            if (!has_file)
                rkb::destroy_default_file_sink();
        }));
        EXPECT_EQ(messages_of(logs_in(m_logs)),
            std::string("binds the sinks\n") + (has_file ? exit_lines : ""));
        std::filesystem::remove_all(m_logs);
    }
}

TEST_F(LogProcess, ThreadsMayLogWhileTheProcessExits)
{
    for (int run = 0; run < 8; ++run)
        ASSERT_TRUE(passesInChild([] { log_until_exit(64); })) << run;
}

TEST_F(LogProcess, AForkedChildCanLogWhateverTheThreadsDidAtTheFork)
{
    const auto log_and_exit = [] {
        RKB_LOG(0, rkb::log_info, "of the child\n");
        rkb::destroy_default_file_sink();
        RKB_LOG(0, rkb::log_info, "in a file of its own\n");
        _exit(EXIT_SUCCESS);
    };
    EXPECT_TRUE(passesInChild([&] {
        log_until_exit(8);
        for (int run = 0; run < 40; ++run)
            ASSERT_TRUE(passesInChild(log_and_exit, 5)) << run;
    }));
}

TEST_F(LogProcess, ACreationThatRunsOutOfMemoryIsTriedAgain)
{
    EXPECT_TRUE(passesInChild([] {
        int failures = 0;
        for (log_control_t* control = nullptr; !control && failures < 10; ++failures) {
            allocations_left = failures;
            EXPECT_NO_THROW(control = log_control_t::instance());
            allocations_left = INT_MAX;
        }
        EXPECT_GT(failures, 2);
        Recorder sink;
        rkb::register_logger_handle(&sink, 2);
        RKB_LOG(0, rkb::log_info, "kept\n");
        EXPECT_EQ(sink.messages(), "kept\n");
        rkb::register_logger_handle(nullptr, 2);
    }));
}

TEST_F(LogProcess, ThreadsLogEachLineOnceAndAfterReleaseThereIsSilence)
{
    EXPECT_TRUE(passesInChild([this] {
        EXPECT_EQ(log_control_t::default_flags(), 3);
        log_from_threads();
        expect_all_lines(m_logs);

        rkb::destroy_default_file_sink();
        const std::string small = m_directory.path() + "small/";
        rkb::create_default_file_sink(small.c_str(), "n", "log", 1, 99);
        log_from_threads();
        expect_all_lines(small);
        EXPECT_EQ(test::filesIn(small).size(), 3u); // rotated once

        Recorder sink;
        rkb::register_logger_handle(&sink, 2);
        rkb::register_logger(1, "UTIL", 5, &sink, 2);
        sink.lines.clear();
        log_control_t::release();
        EXPECT_EQ(log_control_t::instance(), nullptr);
        bool evaluated = false;
        RKB_LOG(1, rkb::log_fatal, (evaluated = true));
        EXPECT_FALSE(evaluated);
        EXPECT_EQ(rkb::register_logger(1, "UTIL", 5, &sink, 2), rkb::log_not_registered);
        EXPECT_EQ(rkb::configure_logger(1048576, 9), 0u); // the sink lives on its own
        log_control_t::release();
        EXPECT_EQ(sink.messages(), exit_lines);
    }));
}

} // namespace
