#include "mediaenv/util_init.h"

#include "base/src/log/log.h"
#include "base/src/log/logger_file_default.h"
#include "tests/support/child_process.h"
#include "tests/support/temp_directory.h"

#include <tuple>

namespace {

TEST(LogFileLimits, FollowTheSettings)
{
    const std::tuple<int, uint32_t, uint32_t> rows[] = {{-1, 100, 1}, {0, 1, 1}, {2, 2, 1},
        {3, 3, 2}, {50, 50, 49}, {51, 51, 49}, {100, 100, 49}, {101, 100, 49}};
    for (const auto& [setting, mebibytes, max_index] : rows) {
        const rkb::log_file_limits_t limits = rkb::log_file_limits(setting, setting);
        EXPECT_EQ(limits.max_size, mebibytes * 1'048'576) << setting;
        EXPECT_EQ(limits.max_index, max_index) << setting;
    }
}

// UTIL_INIT acts once in a process, so each test calls it in a child.
class UtilInit : public testing::Test {
protected:
    void SetUp() override { unsetenv("MIVOMEDIA_INI_PATH"); }

    // The text of the only log file.
    std::string log() const
    {
        for (const auto& [name, text] : test::filesIn(m_directory.path()))
            if (name.starts_with("name_"))
                return text;
        return {};
    }

    const test::TempDirectory m_directory;
};

TEST_F(UtilInit, StartsLoggingOnceWithTheLimitsOfTheSettings)
{
    EXPECT_TRUE(test::passesInChild([this] {
        EXPECT_EQ(rkb::UTIL_INIT(m_directory.path().c_str(), "name", "log"), 0u);
        EXPECT_EQ(rkb::UTIL_INIT("/elsewhere/", "other", "log"), 0u);
        RKB_LOG(rkb::log_module_util, 31, "least severe\n");
        EXPECT_EQ(
            rkb::configure_default_file_sink(rkb::default_max_size, rkb::default_max_index), 0u);
    }));
    EXPECT_EQ(test::filesIn(m_directory.path()).size(), 2u); // the log and the id
    const std::string text = log();
    for (const char* part : {"\tUTIL\t[", "\tN/A\tleast severe\n", "m_max_size = 10485760, ",
             "m_max_idx = 1, ", "\tINFO\tUTIL_INIT  refer s_init_times = 1, module_id = 1\n"})
        EXPECT_NE(text.find(part), text.npos) << part << " in " << text;
    EXPECT_EQ(text.find("UTIL_INIT"), text.rfind("UTIL_INIT")) << text;
    EXPECT_EQ(text.find("register_logger"), text.npos) << text;
}

struct Recorder final : rkb::log_it {
    uint32_t write(uint32_t, uint32_t, const char* data, size_t length) override
    {
        text.append(data, length);
        return 0;
    }
    std::string text;
};

TEST_F(UtilInit, AfterTheFirstLineItsLinesGoToTheCustomSinkElseToTheFile)
{
    for (const bool has_custom_sink : {true, false}) {
        EXPECT_TRUE(test::passesInChild([&] {
            Recorder sink;
            rkb::register_logger_handle(has_custom_sink ? &sink : nullptr, rkb::log_to_primary);
            RKB_LOG(0, rkb::log_info, "binds the default sinks\n");
            EXPECT_EQ(rkb::UTIL_INIT(m_directory.path().c_str(), "name", "log"), 0u);
            RKB_LOG_ASSERT("file", 1, "failed");
            const std::string text = has_custom_sink ? sink.text : log();
            EXPECT_NE(text.find("UTIL_INIT  refer "), text.npos) << text;
            EXPECT_NE(text.find("assert: msg[failed]"), text.npos) << text;
            rkb::register_logger_handle(nullptr, 0);
        }));
    }
}

} // namespace
