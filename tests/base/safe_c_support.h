// What the tests of the bounded functions share.
#pragma once

#include "log.h"

#include <string>
#include <vector>

// A stretch of memory as a text in which '.' stands for a NUL, '#' for what no call may touch and
// '-' for bytes that a call might write. Comparing the whole picture shows every stray write.
inline std::string memory(std::string picture)
{
    for (char& c : picture)
        c = c == '.' ? '\0' : c;
    return picture;
}

// While it lives the library's own lines are enabled and end up here.
class log_capture_t final : public rkb::log_it {
public:
    log_capture_t()
    {
        rkb::log_control_t::set_default_flags(rkb::log_to_primary);
        rkb::log_control_t::set_custom_sink(this);
        rkb::log_control_t::instance()->register_module(
            rkb::log_module_util, "UTIL", 31, this, rkb::log_to_primary);
    }
    ~log_capture_t() override
    {
        rkb::log_control_t::instance()->unregister_module(rkb::log_module_util);
        rkb::log_control_t::instance()->detach(this);
        rkb::log_control_t::set_custom_sink(nullptr);
        rkb::log_control_t::set_default_flags(rkb::log_to_primary | rkb::log_to_secondary);
    }
    uint32_t write(uint32_t, uint32_t, const char* data, size_t length) override
    {
        lines.emplace_back(data, length);
        return 0;
    }

    std::vector<std::string> lines;
};
