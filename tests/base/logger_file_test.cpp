#include "log_file_name.h"
#include "log_fixture.h"
#include "toolkit.h"
#include "util.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using rkb::logger_file;
using test::content;
using test::filesIn;

constexpr uint32_t mebibyte = 1'048'576;
constexpr const char* id_file = "sdk_log_file_id.txt";

uint32_t write(logger_file& sink, const std::string& line)
{
    return sink.write(9, rkb::log_info, line.data(), line.size());
}

TEST(LogFileName, StampSuffixAndIndexArithmetic)
{
    EXPECT_STREQ(rkb::log_file_stamp({2026, 3, 14, 9, 5, 7, 1, 6}, 4711, 3).data(),
        "20260314_090507_4711_sdk_3");
    EXPECT_STREQ(rkb::log_file_stamp({65535, 65535, 65535, 65535, 65535, 65535, 0, 0}, 1, 9).data(),
        "655356553565535_655356553565535_1_sdk_9");
    EXPECT_STREQ(rkb::log_file_suffix(12, "log")->data(), "_sdk_12.log");
    EXPECT_FALSE(rkb::log_file_suffix(1, std::string(250, 'x')));
    const std::pair<const char*, std::optional<uint32_t>> ids[]
        = {{"8", 8}, {"8\n", 8}, {" 12 \r\n", 12}, {"4294967295", 4294967295u}, {"4294967296", {}},
            {"", {}}, {" ", {}}, {"-1", {}}, {"7 8", {}}, {"0x7", {}}, {"seven", {}}};
    for (const auto& [text, id] : ids)
        EXPECT_EQ(rkb::parse_log_file_id(text), id) << text;
    EXPECT_EQ(rkb::first_log_file_index({}, 9), 0u);
    EXPECT_EQ(rkb::first_log_file_index(8, 9), 0u);
    EXPECT_EQ(rkb::first_log_file_index(4294967295u, 10), 6u); // does not wrap before the modulo
    EXPECT_EQ(rkb::first_log_file_index(3, 0), 0u);
}

TEST_F(LogTest, FilesRotateBySizeAndDayInACircleOfIndices)
{
    const std::string exact(mebibyte, 'x'); // fills a file without exceeding it
    std::ofstream(directory() + id_file) << "9\n";
    logger_file sink(directory().c_str(), "name", "log", 1, 9);
    int index = 1; // (9 + 1) modulo 9
    std::map<int, std::string> model;
    for (uint16_t step = 0; step < 60; ++step) {
        const auto day = static_cast<uint16_t>(14 + step / 25); // 25 steps: more than a circle
        const bool midnight = day != test_now.day;
        test_now.day = day;
        test_now.second = step;
        ASSERT_EQ(write(sink, exact), 0u); // at midnight this goes to yesterday's file
        if (midnight) {
            index = 0;
            ASSERT_EQ(write(sink, exact), 0u);
        }
        const std::string line = std::to_string(step) + "\n";
        ASSERT_EQ(write(sink, line), 0u);
        model[index] = exact + line;
        index = index == 9 ? 0 : index + 1;
        model[index].clear();
        ASSERT_EQ(content(directory() + id_file), std::to_string(index));
    }
    const auto files = filesIn(directory());
    EXPECT_EQ(files.size(), 11u); // ten indices and the id file
    const std::string tag = "_" + std::to_string(getpid()) + "_sdk_";
    for (const auto& [name, text] : files) {
        if (name == id_file)
            continue;
        EXPECT_TRUE(name.starts_with("name_202603") && name.ends_with(".log")) << name;
        ASSERT_NE(name.find(tag), std::string::npos) << name;
        EXPECT_EQ(text, model[name[name.size() - 5] - '0']) << name;
    }
}

TEST_F(LogTest, DirectoryAndPrefixRules)
{
    struct {
        const char* directory; // below the test's, null for none
        const char* base_name;
        const char* extension;
        const char* rkb_home;
        std::string file; // what a log file's path begins with
        std::string end;
        std::string id;
    } const cases[] = {
        {"a/b/", "name", "log", "rkb", "a/b/name_2026", "_sdk_0.log", "a/b/"},
        {"glued", "name", nullptr, "rkb", "glued/name_2026", "_sdk_0..log", "glued"},
        {nullptr, nullptr, "log", "rkb", "rkb/logs/" + rkb::program_name() + "_2026", "_sdk_0.log",
            "rkb/logs/"},
        {nullptr, "n", "txt", nullptr, "home/.mivo/logs/n_2026", "_sdk_0.txt", "home/.mivo/logs/"},
    };
    EXPECT_FALSE(rkb::program_name().empty());
    setenv("HOME", (directory() + "home").c_str(), 1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        unsetenv("RKB_HOME");
        if (c.rkb_home)
            setenv("RKB_HOME", (directory() + c.rkb_home).c_str(), 1);
        const std::string given = directory() + (c.directory ? c.directory : "");
        logger_file sink(c.directory ? given.c_str() : nullptr, c.base_name, c.extension, 0, 9);
        const std::filesystem::path file = directory() + c.file;
        const std::filesystem::path earlier = file.parent_path() / ("other" + c.end);
        std::ofstream(earlier) << "of the same index";
        EXPECT_EQ(write(sink, "line\n"), 0u);
        EXPECT_EQ(exists(earlier), c.id == "glued");
        EXPECT_EQ(content(directory() + c.id + id_file), "0");
        const auto files = filesIn(file.parent_path());
        const auto found = files.lower_bound(file.filename());
        ASSERT_NE(found, files.end());
        EXPECT_TRUE(found->first.starts_with(file.filename().string())) << found->first;
        EXPECT_TRUE(found->first.ends_with(c.end)) << found->first;
        EXPECT_EQ(found->second, "line\n");
    }
    unsetenv("RKB_HOME");
    unsetenv("HOME");
    EXPECT_EQ(rkb::default_log_directory(), "/var/opt/mivo/logs/");
}

TEST_F(LogTest, ConfigureTakesOnlyLimitsInRangeAndReportsOthers)
{
    Recorder sink;
    record_library(sink);
    logger_file file(directory().c_str(), "n", "log", 5 * mebibyte, 3);
    const std::string self = ", this = " + address_of(&file) + "\n";
    const std::string bad_index
        = ", MIN_LOG_IDX = 9, MAX_LOG_IDX = 99] file[../src/log], line = [151]";
    const std::string bad_size
        = ", MIN_LOG_SIZE = 1048576, MAX_LOG_SIZE = 1073741824] file[../src/log], line = [150]";
    struct {
        uint32_t max_size;
        uint32_t max_index;
        std::string message; // behind "logger_file_base_t::configure"
    } const cases[] = {
        {mebibyte, 9, ", max_size = 1048576, m_max_size = 5242880, max_idx = 9, m_max_idx = 3"},
        {1'073'741'824, 99,
            ", max_size = 1073741824, m_max_size = 1048576, max_idx = 99, m_max_idx = 9"},
        {mebibyte - 1, 9, " size out of limitation, max_size = 1048575" + bad_size},
        {1'073'741'825, 9, " size out of limitation, max_size = 1073741825" + bad_size},
        {mebibyte, 8, " index out of limitation, max_idx = 8" + bad_index},
        {mebibyte, 100, " index out of limitation, max_idx = 100" + bad_index},
        {mebibyte, 9, ", max_size = 1048576, m_max_size = 1073741824, max_idx = 9, m_max_idx = 99"},
    };
    for (const auto& c : cases) {
        const bool bad = c.message[0] == ' ';
        EXPECT_EQ(file.configure(c.max_size, c.max_index), bad ? 8u : 0u);
        EXPECT_EQ(sink.message(),
            (bad ? "assert: msg[" : "") + ("logger_file_base_t::configure" + c.message + self));
    }
}

TEST_F(LogTest, AFileThatCannotBeOpenedIsReportedAndTriedAgain)
{
    const auto write_in_vain = [](logger_file& sink) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(write(sink, "lost\n"), 999u);
        return testing::internal::GetCapturedStderr();
    };
    const std::string gone = directory() + "gone/";
    logger_file sink(gone.c_str(), "n", "log", mebibyte, 9);
    std::filesystem::remove(gone);
    EXPECT_EQ(write_in_vain(sink), "failed to open file [" + gone + "n] errno = 2\n");
    std::filesystem::create_directory(gone);
    EXPECT_EQ(write(sink, "kept\n"), 0u);
    // Gone while a file is open: that file still takes the line that fills it.
    std::filesystem::remove_all(gone);
    EXPECT_EQ(write(sink, std::string(mebibyte + 1, 'x')), 0u);
    write_in_vain(sink);
    std::filesystem::create_directory(gone);
    EXPECT_EQ(write(sink, "again\n"), 0u);
    EXPECT_EQ(content(gone + id_file), "1");

    const std::string too_long = directory() + std::string(1 << 20, '/'); // many parents to try
    logger_file hopeless(too_long.c_str(), "n", "log", mebibyte, 9);
    EXPECT_TRUE(write_in_vain(hopeless).ends_with("errno = 36\n"));
}

TEST_F(LogTest, AnIdFileThatIsAPipeHoldsNothingUp)
{
    ASSERT_EQ(mkfifo((directory() + id_file).c_str(), 0600), 0);
    logger_file sink(directory().c_str(), "n", "log", mebibyte, 9);
    EXPECT_EQ(write(sink, "line\n"), 0u);
}

// The limit on file sizes stands in for a disk that is full in the middle of a line.
TEST_F(LogTest, AFullDiskLosesWholeLinesOnly)
{
    logger_file sink(directory().c_str(), "n", "log", mebibyte, 9);
    EXPECT_EQ(write(sink, "first\n"), 0u);
    signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{10, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_EQ(write(sink, "second\n"), 0u);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(filesIn(directory()).begin()->second, "first\n");
    EXPECT_EQ(write(sink, "third\n"), 0u);
    EXPECT_EQ(filesIn(directory()).begin()->second, "first\nthird\n"); // the log, not the id
}

TEST_F(LogTest, RawWriteGoesBehindWhatTheStreamHolds)
{
    logger_file sink(directory().c_str(), "n", "log", mebibyte, 9);
    const std::string path = directory() + "raw";
    FILE* stream = fopen(path.c_str(), "w");
    fputs("held ", stream);
    sink.write_raw(stream, "one\n", 4);
    sink.write_raw(stream, "two\n", 4);
    sink.write_raw(stream, nullptr, 4);
    sink.write_raw(nullptr, "x", 1);
    EXPECT_EQ(content(path), "held one\ntwo\n");
    fclose(stream);
}

} // namespace
