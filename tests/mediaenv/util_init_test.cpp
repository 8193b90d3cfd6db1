#include "mediaenv/util_init.h"

#include "tests/base/log_fixture.h"
#include "tests/support/child_process.h"

#include <tuple>

namespace {

TEST(LogFileLimits, FollowTheSettings)
{
    const std::tuple<int, uint32_t, uint32_t> rows[] = {{-1, 100, 1}, {0, 1, 1}, {2, 2, 1},
        {3, 3, 2}, {51, 51, 49}, {100, 100, 49}, {101, 100, 49}};
    for (const auto& [setting, mebibytes, max_index] : rows) {
        const rkb::log_file_limits_t limits = rkb::log_file_limits(setting, setting);
        EXPECT_EQ(limits.max_size, mebibytes * 1'048'576) << setting;
        EXPECT_EQ(limits.max_index, max_index) << setting;
    }
}

// UTIL_INIT acts once in a process, so each test calls it in a child.
TEST(UtilInit, StartsLoggingOnceWithTheLimitsOfTheSettings)
{
    const test::TempDirectory directory;
    unsetenv("MIVOMEDIA_INI_PATH");
    EXPECT_TRUE(test::passesInChild([&] {
        EXPECT_EQ(rkb::UTIL_INIT(directory.path().c_str(), "name", "log"), 0u);
        EXPECT_EQ(rkb::UTIL_INIT("/elsewhere/", "other", "log"), 0u);
        RKB_LOG(rkb::log_module_util, 31, "least severe\n");
        rkb::configure_default_file_sink(rkb::default_max_size, rkb::default_max_index);
    }));
    const std::string log = logs_in(directory.path());
    EXPECT_NE(log.find("\tUTIL\t["), log.npos) << log;
    EXPECT_TRUE(messages_of(log).starts_with(
        "UTIL_INIT  refer s_init_times = 1, module_id = 1\nleast severe\n"
        "logger_file_base_t::configure, max_size = 41943040, m_max_size = 10485760, max_idx = 9, "
        "m_max_idx = 1, this = "))
        << log;
}

TEST(UtilInit, AfterTheFirstLineItsLinesGoToTheCustomSinkElseToTheFile)
{
    for (const bool has_custom_sink : {true, false}) {
        EXPECT_TRUE(test::passesInChild([&] {
            const test::TempDirectory directory;
            Recorder sink;
            rkb::register_logger_handle(has_custom_sink ? &sink : nullptr, rkb::log_to_primary);
            RKB_LOG(0, rkb::log_info, "binds the default sinks\n");
            EXPECT_EQ(rkb::UTIL_INIT(directory.path().c_str(), "name", "log"), 0u);
            EXPECT_EQ(has_custom_sink ? sink.messages() : messages_of(logs_in(directory.path())),
                std::string(has_custom_sink ? "binds the default sinks\n" : "")
                    + "UTIL_INIT  refer s_init_times = 1, module_id = 1\n");
            rkb::register_logger_handle(nullptr, 0);
        }));
    }
}

} // namespace
