#include "mediaenv/util_init.h"

#include "base/src/log/log.h"
#include "base/src/log/logger_file_default.h"
#include "mediaenv/media_config.h"

#include <algorithm>
#include <atomic>

namespace rkb {

namespace {

constexpr uint32_t max_level = 31;
constexpr uint32_t mode = log_to_primary | log_to_secondary;

std::atomic<uint32_t> s_init_times;

} // namespace

log_file_limits_t log_file_limits(int size, int count)
{
    constexpr uint32_t mebibyte = 1'048'576;
    constexpr int max_mebibytes = 100;
    const int mebibytes = size >= 0 && size <= max_mebibytes ? std::max(size, 1) : max_mebibytes;
    const int max_index = std::clamp(count, 2, 50) - 1;
    return {static_cast<uint32_t>(mebibytes) * mebibyte, static_cast<uint32_t>(max_index)};
}

uint32_t UTIL_INIT(const char* directory, const char* base_name, const char* extension)
{
    const uint32_t init_times = ++s_init_times;
    if (init_times != 1)
        return 0;
    const media_config_t& config = media_config_t::instance();
    const auto [size, index]
        = log_file_limits(config.log_max_file_size(), config.log_max_file_count());
    if (!create_default_file_sink(directory, base_name, extension, size, index))
        return log_sink_failed;
    const uint32_t result = register_module(log_module_util, "UTIL", max_level, nullptr, mode);
    RKB_LOG(log_module_util, log_info,
        "UTIL_INIT  refer s_init_times = " << init_times << ", module_id = " << log_module_util
                                           << "\n");
    return result;
}

} // namespace rkb
