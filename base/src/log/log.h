// How a call site logs a line, and the entry points that set logging up.
#pragma once

#include "base/src/auxi/log_stream.h"
#include "base/src/log/log_control.h"

// Logs one line of a module at a level:
//
//     RKB_LOG(module_id, rkb::log_info, "opened, path = " << path << ", this = " << this << "\n");
//
// The pieces are streamed into a rkb::text_stream_t. They are evaluated only when the line is
// enabled; a disabled call costs a load, a comparison and a branch. By convention items are joined
// with ", ", a key and its value with " = ", an object is named by ", this = " and its address, and
// the line ends with "\n".
//
// Any thread, also before and after main. Does nothing when there is no logging control. Blocks
// while another line is written, and as long as the sinks take. Throws only what a piece throws.
#define RKB_LOG(site_module, site_level, ...)                                                      \
    do {                                                                                           \
        const ::rkb::log_site_t rkb_log_site{(site_module), (site_level)};                         \
        if (::rkb::log_may_pass(rkb_log_site.module_id, rkb_log_site.level))                       \
            ::rkb::log_line(rkb_log_site,                                                          \
                [&](::rkb::text_stream_t& rkb_log_stream) { rkb_log_stream << __VA_ARGS__; });     \
    } while (false)

// Logs that a check has failed, at FATAL on the base library's module: "assert: msg[", the pieces,
// "] file[", file, "], line = [", line, "]" and `tail`.
#define RKB_LOG_ASSERT_TAIL(file, line, tail, ...)                                                 \
    RKB_LOG(::rkb::log_module_util, ::rkb::log_fatal,                                              \
        "assert: msg[" << __VA_ARGS__ << "] file[" << (file) << "], line = [" << (line) << "]"     \
                       << tail)

#define RKB_LOG_ASSERT(file, line, ...) RKB_LOG_ASSERT_TAIL(file, line, "\n", __VA_ARGS__)

namespace rkb {

struct log_site_t {
    uint32_t module_id;
    uint32_t level;
};

// The second half of RKB_LOG, for lines that may pass: builds the line in a buffer on the stack and
// writes it. The site is passed by value, because a reference would have each disabled call store
// it.
template <typename pieces_t>
[[gnu::noinline]] void log_line(log_site_t site, const pieces_t& pieces)
{
    log_control_t* control = log_control_t::instance();
    const char* module_name = nullptr;
    const char* level_name = nullptr;
    if (!control || !control->is_enabled(site.module_id, site.level, module_name, level_name))
        return;
    char buffer[log_line_size];
    log_stream_t stream(buffer, sizeof buffer, level_name, module_name);
    pieces(stream);
    control->write(site.module_id, site.level, stream.text(), stream.length());
}

// Each entry point logs its own call at INFO on the base library's module before it acts. After
// log_control_t::release() they log nothing, but the custom sink, the default flags and the default
// file sink can still be set. Any thread.

// Registers a module with `mode` as its sink flags: see log_control_t::register_module(). A null
// `sink` stands for the custom sink if there is one, else for the default file sink, which is
// created unless logging is off. The caller owns the sink. Returns 0, log_bad_argument, or
// log_not_registered when there is no control.
uint32_t register_logger(
    uint32_t module_id, const char* module_name, uint32_t max_level, log_it* sink, uint32_t mode);

// As register_logger(), but does not log its call.
uint32_t register_module(
    uint32_t module_id, const char* module_name, uint32_t max_level, log_it* sink, uint32_t mode);

// Makes `sink` the custom sink and the low byte of `mask` the default flags, logs its call, and
// puts the sink into every slot of every module: see log_control_t::set_sink_everywhere(). If no
// line has been logged before, the line about this call is already written to the new sink. Modules
// that are registered keep their flags. The caller owns the sink; null is none.
void register_logger_handle(log_it* sink, uint32_t mask);

// Sets the gate: see log_control_t::set_gate().
void enable_logger(uint32_t max_level);

// Sets the limits of the default file sink, in bytes and file indices, and creates the sink if
// there is none: see logger_file_base_t::configure(). Returns 0, log_bad_value, or log_sink_failed
// when there is no memory for the sink.
uint32_t configure_logger(uint32_t max_size, uint32_t max_index);

} // namespace rkb
