#include "tests/base/log_fixture.h"

#include <barrier>
#include <set>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace {

using rkb::log_control_t;

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
    for (const auto& [name, text] : test::filesIn(directory)) {
        std::istringstream stream(name.ends_with(".log") ? text : "");
        for (std::string line; std::getline(stream, line);)
            found.insert(line.substr(std::min(line.find("line "), line.size())));
    }
    EXPECT_TRUE(found == expected) << found.size(); // without printing them
}

struct Mortal final : rkb::log_it {
    static inline bool is_gone = false;
    ~Mortal() override { is_gone = true; }
    uint32_t write(uint32_t, uint32_t, const char*, size_t) override
    {
        if (is_gone)
            _exit(EXIT_FAILURE);
        return 0;
    }
};

TEST(LogExit, TheLastWordsAtExitGoToNoSinkThatMayBeGone)
{
    const auto log_and_exit = [] {
        static Mortal sink; // destroyed before the control
        rkb::register_logger_handle(&sink, 2);
        rkb::register_logger(1, "UTIL", 5, nullptr, 2);
        RKB_LOG(1, rkb::log_info, "binds the sink\n");
        exit(EXIT_SUCCESS);
    };
    EXPECT_EXIT(log_and_exit(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

// The whole life of a control, which a process has only once.
TEST(LogThreads, FirstUseRotationReleaseAndSilence)
{
    const test::TempDirectory directory;
    setenv("RKB_HOME", directory.path().c_str(), 1);
    EXPECT_EQ(log_control_t::custom_sink(), nullptr);
    EXPECT_EQ(log_control_t::default_flags(), 3);
    log_from_threads();
    expect_all_lines(directory.path() + "logs");

    rkb::destroy_default_file_sink();
    const std::string small = directory.path() + "small/";
    rkb::create_default_file_sink(small.c_str(), "n", "log", 1, 99);
    log_from_threads();
    expect_all_lines(small);
    EXPECT_EQ(test::filesIn(small).size(), 3u); // rotated once

    Recorder sink;
    rkb::register_logger_handle(&sink, 2);
    rkb::register_logger(1, "UTIL", 5, &sink, 2);
    rkb::destroy_default_file_sink();
    log_control_t::release();
    ASSERT_EQ(sink.lines.size(), 2u);
    EXPECT_TRUE(sink.lines[0].ends_with("\tINFO\tlog_control_t::release()\n"));
    EXPECT_TRUE(sink.lines[1].ends_with("\tINFO\tlog_control_t::~log_control_t()\n"));
    EXPECT_EQ(log_control_t::instance(), nullptr);
    bool evaluated = false;
    RKB_LOG(1, rkb::log_fatal, (evaluated = true));
    RKB_LOG(0, rkb::log_fatal, (evaluated = true));
    EXPECT_FALSE(evaluated);
    EXPECT_EQ(rkb::register_logger(1, "UTIL", 5, &sink, 2), rkb::log_not_registered);
    EXPECT_EQ(rkb::configure_logger(1048576, 9), 0u); // the sink lives on its own
    log_control_t::release();
    EXPECT_EQ(sink.lines.size(), 2u);
}

} // namespace
