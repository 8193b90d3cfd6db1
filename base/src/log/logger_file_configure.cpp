// The limits of the file sink: apart from the rest because it reports to the log.
#include "base/src/log/log.h"
#include "base/src/log/logger_file.h"

namespace rkb {

namespace {

constexpr const char* source_file = "../src/log";
constexpr int size_line = 150;
constexpr int index_line = 151;

bool in_range(uint32_t value, uint32_t low, uint32_t high)
{
    return value >= low && value <= high;
}

} // namespace

uint32_t logger_file_base_t::configure(uint32_t max_size, uint32_t max_index)
{
    RKB_LOG(log_module_util, log_info,
        "logger_file_base_t::configure, max_size = "
            << max_size << ", m_max_size = " << m_max_size << ", max_idx = " << max_index
            << ", m_max_idx = " << m_max_index << ", this = " << this << "\n");
    if (!in_range(max_size, min_log_size, max_log_size)) {
        RKB_LOG_ASSERT_TAIL(source_file, size_line, ", this = " << this << "\n",
            "logger_file_base_t::configure size out of limitation"
                << ", max_size = " << max_size << ", MIN_LOG_SIZE = " << min_log_size
                << ", MAX_LOG_SIZE = " << max_log_size);
        return log_bad_value;
    }
    if (!in_range(max_index, min_log_index, max_log_index)) {
        RKB_LOG_ASSERT_TAIL(source_file, index_line, ", this = " << this << "\n",
            "logger_file_base_t::configure index out of limitation"
                << ", max_idx = " << max_index << ", MIN_LOG_IDX = " << min_log_index
                << ", MAX_LOG_IDX = " << max_log_index);
        return log_bad_value;
    }
    m_max_size = max_size;
    m_max_index = max_index;
    return 0;
}

} // namespace rkb
