#include "base/src/log/log_file_name.h"
#include "base/src/toolkit/toolkit.h"
#include "tests/base/log_fixture.h"

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace {

using rkb::logger_file;
using test::content;
using test::filesIn;

constexpr uint32_t mebibyte = 1'048'576;
constexpr const char* id_file = "sdk_log_file_id.txt";

class LoggerFile : public LogTest {
protected:
    static uint32_t write(logger_file& sink, const std::string& line)
    {
        return sink.write(9, rkb::log_info, line.data(), line.size());
    }

    // The part of a file's name that the fixed time and the index make.
    static std::string stamp(uint32_t index)
    {
        return rkb::log_file_stamp(test_now, static_cast<uint32_t>(getpid()), index).data();
    }
};

TEST_F(LoggerFile, BeginsWithIndex0AfterAnIdThatIsNoNumber)
{
    EXPECT_EQ(stamp(3), "20260314_090507_" + std::to_string(getpid()) + "_sdk_3");
    for (const char* id : {"", " ", "-1", "7 8", "4294967296"}) {
        std::ofstream(directory() + id_file) << id;
        logger_file sink(directory().c_str(), "n", "log", mebibyte, 9);
        EXPECT_EQ(write(sink, "line\n"), 0u);
        EXPECT_EQ(content(directory() + id_file), "0");
    }
    EXPECT_EQ(rkb::first_log_file_index(3, 0), 0u);
}

TEST_F(LoggerFile, RotatesBySizeAndDayInACircleOfIndices)
{
    std::map<std::string, std::string> model;
    std::string current;
    const auto open = [&](uint32_t index) {
        const std::string end = "_sdk_" + std::to_string(index) + ".log";
        std::erase_if(model, [&](const auto& file) { return file.first.ends_with(end); });
        current = "name_" + stamp(index) + ".log";
        model[id_file] = std::to_string(index);
    };
    std::ofstream(directory() + id_file) << " 4294967295 \r\n";
    logger_file sink(directory().c_str(), "name", "log", 1, 9);
    const auto write_line = [&](const std::string& line) {
        EXPECT_EQ(write(sink, line), 0u);
        model[current] += line;
    };
    uint32_t index = 4; // (4294967295 + 1) modulo 9
    open(index);
    for (test_now.second = 0; test_now.second < 60; ++test_now.second) {
        if (test_now.second % 25 == 24) { // midnight, after more than a circle
            ++test_now.day;
            write_line("yesterday's\n");
            open(index = 0);
        }
        write_line(std::string(mebibyte, 'x')); // fills the file without exceeding it
        write_line("over\n");
        open(index = index == 9 ? 0 : index + 1);
        ASSERT_EQ(content(directory() + id_file), model[id_file]);
    }
    model[current];                             // has no line yet
    EXPECT_TRUE(filesIn(directory()) == model); // without printing megabytes
}

TEST_F(LoggerFile, NamesItsFilesAfterDirectoryProgramAndExtension)
{
    // The directory (below the test's, null for none), base name, extension and RKB_HOME; then the
    // log's path before its stamp and after it, and the start of the id file's.
    using text_t = const char*;
    const std::tuple<text_t, text_t, text_t, text_t, std::string, text_t, text_t> cases[] = {
        {"a/b/", "name", "log", "rkb", "a/b/name_", ".log", "a/b/"},
        {"glued", "name", nullptr, "rkb", "glued/name_", "..log", "glued"},
        {nullptr, nullptr, "log", "rkb", "rkb/logs/test-base-single_", ".log", "rkb/logs/"},
        {nullptr, "n", "txt", nullptr, "home/.mivo/logs/n_", ".txt", "home/.mivo/logs/"},
    };
    setenv("HOME", (directory() + "home").c_str(), 1);
    for (const auto& [given, base_name, extension, rkb_home, path, end, id] : cases) {
        SCOPED_TRACE(path);
        rkb_home ? setenv("RKB_HOME", (directory() + rkb_home).c_str(), 1) : unsetenv("RKB_HOME");
        const std::string whole = directory() + (given ? given : "");
        logger_file sink(given ? whole.c_str() : nullptr, base_name, extension, 0, 9);
        const std::string earlier = directory() + path + "earlier_sdk_0" + end;
        std::ofstream(earlier) << "of the same index";
        EXPECT_EQ(write(sink, "line\n"), 0u);
        EXPECT_EQ(content(directory() + path + stamp(0) + end), "line\n");
        EXPECT_EQ(content(directory() + id + id_file), "0");
        EXPECT_EQ(std::filesystem::exists(earlier), id == std::string("glued"));
    }
    unsetenv("HOME");
    EXPECT_EQ(rkb::default_log_directory(), "/var/opt/mivo/logs/");
}

TEST_F(LoggerFile, ConfigureTakesOnlyLimitsInRangeAndReportsOthers)
{
    Recorder sink;
    record_library(sink);
    logger_file file(directory().c_str(), "n", "log", 5 * mebibyte, 3);
    // The limits, and what is logged after the function's name.
    const std::string sizes
        = ", MIN_LOG_SIZE = 1048576, MAX_LOG_SIZE = 1073741824] file[../src/log], ";
    const std::string indices
        = ", MIN_LOG_IDX = 9, MAX_LOG_IDX = 99] file[../src/log], line = [151], ";
    const std::tuple<uint32_t, uint32_t, std::string> cases[] = {
        {1048576, 9, ", max_size = 1048576, m_max_size = 5242880, max_idx = 9, m_max_idx = 3, "},
        {1073741824, 99, ", max_size = 1073741824, m_max_size = 1048576, "},
        {1048575, 9, " size out of limitation, max_size = 1048575" + sizes + "line = [150], "},
        {1073741825, 9, " size out of limitation, max_size = 1073741825" + sizes},
        {1048576, 8, " index out of limitation, max_idx = 8" + indices},
        {1048576, 100, " index out of limitation, max_idx = 100" + indices},
        {1048576, 9,
            ", max_size = 1048576, m_max_size = 1073741824, max_idx = 9, m_max_idx = 99, "},
    };
    for (const auto& [max_size, max_index, message] : cases) {
        EXPECT_EQ(file.configure(max_size, max_index), message[0] == ' ' ? 8u : 0u);
        const std::string line = messages_of(sink.lines.back());
        EXPECT_NE(line.find("logger_file_base_t::configure" + message), line.npos);
        EXPECT_EQ(line.starts_with("assert: msg["), message[0] == ' ');
        EXPECT_TRUE(line.ends_with("this = " + address_of(&file) + "\n")) << line;
    }
}

TEST_F(LoggerFile, ADirectoryThatWasRemovedIsCreatedAgainAndAFileThatCannotBeOpenedIsReported)
{
    const std::string removed = directory() + "parent/gone/";
    logger_file sink(removed.c_str(), "n", "log", mebibyte, 9);
    std::filesystem::remove_all(directory() + "parent");
    EXPECT_EQ(write(sink, "first\n"), 0u);
    EXPECT_EQ(content(removed + "n_" + stamp(0) + ".log"), "first\n");
    EXPECT_EQ(content(removed + id_file), "0");
    // Removed while a file is open: that file still takes the line that fills it.
    std::filesystem::remove_all(directory() + "parent");
    std::ofstream(directory() + "parent") << "a file in the directory's place";
    EXPECT_EQ(write(sink, std::string(mebibyte + 1, 'x')), 0u);
    const std::string too_long = directory() + std::string(1 << 20, '/'); // many parents to try
    logger_file hopeless(too_long.c_str(), "n", "log", mebibyte, 9);
    testing::internal::CaptureStderr();
    EXPECT_EQ(write(sink, "lost\n"), 999u);
    EXPECT_EQ(write(hopeless, "lost\n"), 999u);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
        "failed to open file [" + removed + "n] errno = 20\nfailed to open file [" + too_long
            + "n] errno = 36\n");
    std::filesystem::remove(directory() + "parent");
    EXPECT_EQ(write(sink, "second\n"), 0u);
    EXPECT_EQ(content(removed + "n_" + stamp(1) + ".log"), "second\n");
    EXPECT_EQ(content(removed + id_file), "1");
}

TEST_F(LoggerFile, IsClosedInProgramsThatTheProcessStartsAndWaitsForNoPipe)
{
    ASSERT_EQ(mkfifo((directory() + id_file).c_str(), 0600), 0);
    logger_file sink(directory().c_str(), "n", "log", mebibyte, 9);
    EXPECT_EQ(write(sink, "line\n"), 0u);
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code closed; // the iterator's own descriptor is among them
        if (!read_symlink(entry.path(), closed).string().starts_with(directory()))
            continue;
        ++found;
        EXPECT_TRUE(fcntl(std::stoi(entry.path().filename()), F_GETFD) & FD_CLOEXEC);
    }
    EXPECT_EQ(found, 1);
}

// The limit on file sizes stands in for a disk that is full in the middle of a line.
TEST_F(LoggerFile, AFullDiskLosesWholeLinesOnlyAndRawWritesGoAfterWhatTheStreamHolds)
{
    logger_file sink(directory().c_str(), "n", "log", mebibyte, 9);
    EXPECT_EQ(write(sink, "first\n"), 0u);
    signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{10, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_EQ(write(sink, "second\n"), 0u);
    EXPECT_EQ(logs_in(directory()), "first\n");
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(write(sink, "third\n"), 0u);
    EXPECT_EQ(logs_in(directory()), "first\nthird\n");

    FILE* stream = fopen((directory() + "raw").c_str(), "w");
    fputs("held ", stream);
    sink.write_raw(stream, "one\n", 4);
    sink.write_raw(nullptr, "x", 1);
    EXPECT_EQ(content(directory() + "raw"), "held one\n");
    fclose(stream);
}

} // namespace
