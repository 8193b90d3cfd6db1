#include "log_fixture.h"
#include "thread.h"

#include <sched.h>
#include <set>
#include <sstream>
#include <unistd.h>

namespace {

using rkb::log_control_t;

constexpr int thread_count = 8;
constexpr int lines_per_thread = 500;

std::atomic<int> ready;

struct writer_t {
    int number = 0;
    rkb::thread_t thread;
};

// Module 0 passes without registration, so the lines of the first half race to create the control
// and to bind the sinks.
void write_lines(void* argument)
{
    const auto* writer = static_cast<writer_t*>(argument);
    for (++ready; ready < thread_count;) // all at once
        sched_yield();
    for (int i = 0; i < lines_per_thread; ++i)
        RKB_LOG(0, rkb::log_info,
            "line " << writer->number << " " << i << " " << std::string(200, 'x') << "\n");
}

void run_threads()
{
    std::vector<writer_t> writers(thread_count);
    ready = 0;
    int number = 0;
    for (writer_t& writer : writers) {
        writer.number = number++;
        ASSERT_EQ(writer.thread.start(write_lines, &writer), 1);
    }
    for (writer_t& writer : writers)
        writer.thread.join();
}

// Every line of every thread is there once, whole, in the order in which its thread wrote it.
void expect_all_lines(const std::string& directory)
{
    std::map<int, std::set<int>> seen;
    size_t lines = 0;
    for (const auto& [name, text] : files_in(directory)) {
        std::istringstream stream(name.ends_with(".log") ? text : "");
        for (std::string line; std::getline(stream, line); ++lines) {
            int number = -1;
            int i = -1;
            char end[202] = {};
            const size_t message = line.find("line ");
            ASSERT_NE(message, std::string::npos) << line;
            ASSERT_EQ(sscanf(line.c_str() + message, "line %d %d %201s", &number, &i, end), 3)
                << line;
            ASSERT_EQ(std::string(end), std::string(200, 'x'));
            seen[number].insert(i);
        }
    }
    EXPECT_EQ(lines, size_t{thread_count} * lines_per_thread);
    for (const auto& [number, numbers] : seen)
        EXPECT_EQ(numbers.size(), size_t{lines_per_thread}) << number;
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
    Directory directory;
    setenv("RKB_HOME", directory.path().c_str(), 1);
    EXPECT_EQ(log_control_t::custom_sink(), nullptr);
    EXPECT_EQ(log_control_t::default_flags(), 3);
    run_threads();
    expect_all_lines(directory.path() + "logs");

    rkb::destroy_default_file_sink();
    std::filesystem::remove_all(directory.path() + "logs");
    rkb::create_default_file_sink((directory.path() + "small/").c_str(), "n", "log", 1, 99);
    run_threads();
    expect_all_lines(directory.path() + "small");
    EXPECT_EQ(files_in(directory.path() + "small").size(), 3u); // rotated once

    Recorder sink;
    rkb::register_logger_handle(&sink, 2);
    rkb::register_logger(1, "UTIL", 5, &sink, 2);
    rkb::destroy_default_file_sink();
    log_control_t::release();
    ASSERT_EQ(sink.lines.size(), 2u);
    EXPECT_TRUE(sink.lines[0].ends_with("\tINFO\tlog_control_t::release()\n"));
    EXPECT_TRUE(sink.lines[1].ends_with("\tINFO\tlog_control_t::~log_control_t()\n"));
    EXPECT_EQ(log_control_t::instance(), nullptr);
    int evaluated = 0;
    RKB_LOG(1, rkb::log_fatal, ++evaluated);
    RKB_LOG(0, rkb::log_fatal, ++evaluated);
    EXPECT_EQ(evaluated, 0);
    EXPECT_EQ(rkb::register_logger(1, "UTIL", 5, &sink, 2), rkb::log_not_registered);
    EXPECT_EQ(rkb::configure_logger(1048576, 9), 0u); // the sink lives on its own
    log_control_t::release();
    EXPECT_EQ(sink.lines.size(), 2u);
}

} // namespace
