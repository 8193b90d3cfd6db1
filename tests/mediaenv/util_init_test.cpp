#include "mediaenv/util_init.h"

#include "base/src/log/log.h"
#include "base/src/log/logger_file_default.h"
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

TEST(UtilInit, StartsLoggingOnceWithTheLimitsOfTheSettings)
{
    const test::TempDirectory directory;
    unsetenv("MIVOMEDIA_INI_PATH");
    EXPECT_EQ(rkb::UTIL_INIT(directory.path().c_str(), "name", "log"), 0u);
    EXPECT_EQ(rkb::UTIL_INIT("/elsewhere/", "other", "log"), 0u);
    RKB_LOG(rkb::log_module_util, 31, "least severe\n");
    EXPECT_EQ(rkb::configure_default_file_sink(rkb::default_max_size, rkb::default_max_index), 0u);
    rkb::destroy_default_file_sink();

    const auto files = test::filesIn(directory.path());
    ASSERT_EQ(files.size(), 2u); // the log and the id
    const auto& [name, text] = *files.begin();
    EXPECT_TRUE(name.starts_with("name_")) << name;
    for (const char* part : {"\tUTIL\t[", "\tN/A\tleast severe\n", "m_max_size = 10485760, ",
             "m_max_idx = 1, ", "\tINFO\tUTIL_INIT  refer s_init_times = 1, module_id = 1\n"})
        EXPECT_NE(text.find(part), text.npos) << part << " in " << text;
    EXPECT_EQ(text.find("UTIL_INIT"), text.rfind("UTIL_INIT")) << text;
}

} // namespace
