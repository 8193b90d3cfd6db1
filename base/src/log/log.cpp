#include "base/src/log/log.h"

#include "base/src/log/logger_file_default.h"

#include <mutex>

namespace rkb {

namespace {

log_it* sink_or_default(const log_control_t& control, log_it* sink)
{
    if (sink)
        return sink;
    if (log_it* custom = log_control_t::custom_sink())
        return custom;
    return control.gate() < 0 ? existing_default_file_sink() : default_file_sink();
}

} // namespace

uint32_t register_logger(
    uint32_t module_id, const char* module_name, uint32_t max_level, log_it* sink, uint32_t mode)
{
    RKB_LOG(log_module_util, log_info,
        "register_logger  module_id = " << module_id << ", module_name = " << module_name
                                        << ", max_level = " << max_level << ", logger = " << sink
                                        << ", mode = " << mode << "\n");
    return register_module(module_id, module_name, max_level, sink, mode);
}

uint32_t register_module(
    uint32_t module_id, const char* module_name, uint32_t max_level, log_it* sink, uint32_t mode)
{
    log_control_t* control = log_control_t::instance();
    if (!control)
        return log_not_registered;
    return control->register_module(
        module_id, module_name, max_level, sink_or_default(*control, sink), mode);
}

void register_logger_handle(log_it* sink, uint32_t mask)
{
    log_control_t::set_custom_sink(sink);
    log_control_t::set_default_flags(static_cast<uint8_t>(mask));
    const auto log_call = [sink, mask](text_stream_t& stream) {
        stream << "register_logger_handle logger = " << sink << ", mask = ";
        stream.set_radix(radix_binary);
        stream << mask << "\n";
    };
    if (log_may_pass(log_module_util, log_info))
        log_line({log_module_util, log_info}, log_call);
    if (log_control_t* control = log_control_t::instance())
        control->set_sink_everywhere(sink, mask & 0xFF);
}

void enable_logger(uint32_t max_level)
{
    constexpr uint32_t off = 255;
    const uint32_t gate = max_level & 0xFF;
    if (gate < off)
        RKB_LOG(log_module_util, log_info, "enable_logger max_level = " << max_level << "\n");
    if (log_control_t* control = log_control_t::instance())
        control->set_gate(gate);
}

uint32_t configure_logger(uint32_t max_size, uint32_t max_index)
{
    RKB_LOG(log_module_util, log_info,
        "configure_logger, max_size = " << max_size << ", max_idx = " << max_index << "\n");
    return configure_default_file_sink(max_size, max_index);
}

} // namespace rkb
