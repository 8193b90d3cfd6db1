#include "util_init.h"

#include "log.h"
#include "logger_file_default.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

TEST(LogFileLimits, FollowTheSettings)
{
    struct row_t {
        int setting;
        uint32_t max_size;
        uint32_t max_index;
    };
    constexpr uint32_t mebibyte = 1'048'576;
    const row_t rows[] = {
        {-1, 104'857'600, 1},
        {0, mebibyte, 1},
        {2, 2 * mebibyte, 1},
        {3, 3 * mebibyte, 2},
        {50, 50 * mebibyte, 49},
        {51, 51 * mebibyte, 49},
        {100, 104'857'600, 49},
        {101, 104'857'600, 49},
    };
    for (const row_t& row : rows) {
        const rkb::log_file_limits_t limits = rkb::log_file_limits(row.setting, row.setting);
        EXPECT_EQ(limits.max_size, row.max_size) << row.setting;
        EXPECT_EQ(limits.max_index, row.max_index) << row.setting;
    }
}

// All that the library logged into the directory.
std::string logged(const std::filesystem::path& directory)
{
    std::ostringstream text;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().extension() == ".txt")
            continue;
        EXPECT_TRUE(entry.path().filename().string().starts_with("name_"));
        text << std::ifstream(entry.path()).rdbuf();
    }
    return text.str();
}

TEST(UtilInit, StartsLoggingOnceWithTheLimitsOfTheSettings)
{
    const std::filesystem::path directory
        = std::filesystem::path(testing::TempDir()) / "kelprobe-util-init/";
    std::filesystem::remove_all(directory);
    unsetenv("MIVOMEDIA_INI_PATH");

    EXPECT_EQ(rkb::UTIL_INIT(directory.c_str(), "name", "log"), 0u);
    EXPECT_EQ(rkb::UTIL_INIT("/elsewhere/", "other", "log"), 0u);
    RKB_LOG(rkb::log_module_util, 31, "least severe\n");
    EXPECT_EQ(rkb::configure_default_file_sink(rkb::default_max_size, rkb::default_max_index), 0u);

    const std::string text = logged(directory);
    const size_t start = text.find("\tUTIL\t[");
    EXPECT_NE(start, text.npos) << text;
    EXPECT_NE(text.find("\tINFO\tUTIL_INIT  refer s_init_times = 1, module_id = 1\n"), text.npos);
    EXPECT_EQ(text.find("UTIL_INIT"), text.rfind("UTIL_INIT")) << text;
    EXPECT_NE(text.find("\tN/A\tleast severe\n"), text.npos) << text;
    EXPECT_NE(text.find("m_max_size = 10485760, "), text.npos) << text;
    EXPECT_NE(text.find("m_max_idx = 1, "), text.npos) << text;
    rkb::destroy_default_file_sink();
    std::filesystem::remove_all(directory);
}

} // namespace
