// The surface of logging: how a call site writes a line, and the library's entry points.
#pragma once

#include "base/src/auxi/log_stream.h"
#include "base/src/log/log_control.h"

// Writes one line of a module at a level:
//
//     RKB_LOG(module_id, rkb::log_info, "opened, path = " << path << ", this = " << this << "\n");
//
// The pieces are streamed into a rkb::text_stream_t and evaluated only when the line is enabled; a
// disabled call costs a load and a branch. By convention items are joined with ", ", a key and its
// value with " = ", an object is named by ", this = " and its address, and the line ends with
// "\n". Any thread, from before main to after it; without a control nothing happens. What a piece
// throws leaves the call site.
#define RKB_LOG(site_module, site_level, ...)                                                      \
    do {                                                                                           \
        const ::rkb::log_site_t rkb_log_site{(site_module), (site_level)};                         \
        if (::rkb::log_may_pass(rkb_log_site.module_id, rkb_log_site.level))                       \
            ::rkb::log_line(rkb_log_site,                                                          \
                [&](::rkb::text_stream_t& rkb_log_stream) { rkb_log_stream << __VA_ARGS__; });     \
    } while (false)

// The base library's report of a failed check, at FATAL on its own module: "assert: msg[", the
// pieces, "] file[", file, "], line = [", line, "]" and what `tail` adds.
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

// The slow half of RKB_LOG: asks the control, builds the line in a buffer on the stack, writes it.
// The site goes by value: by reference it would be stored before the branch of every disabled call.
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

// The entry points log their own call at INFO on the base library's module before they act. Once
// the control has been released they log nothing; the custom sink, the default flags and the
// default file sink outlive it and can still be set. Any thread.

// Registers a module (see log_control_t::register_module) with `mode` as its sink flags. A null
// `sink` stands for the custom sink if there is one, else for the default file sink, which is
// created unless logging is off. The sink stays the caller's. 0, or log_bad_argument;
// log_not_registered when the control is gone.
uint32_t register_logger(
    uint32_t module_id, const char* module_name, uint32_t max_level, log_it* sink, uint32_t mode);

// What register_logger does after it has logged its call.
uint32_t register_module(
    uint32_t module_id, const char* module_name, uint32_t max_level, log_it* sink, uint32_t mode);

// Makes `sink` the custom sink and the low byte of `mask` the default flags, so that its own line
// goes there already if it is the first, and puts the sink into every slot of every module. For
// set-up: modules registered before keep their flags. The sink stays the caller's; null for none.
void register_logger_handle(log_it* sink, uint32_t mask);

// Sets the gate to the low byte of `max_level`; 255 switches logging off.
void enable_logger(uint32_t max_level);

// Sets the limits of the default file sink, creating it: see logger_file_base_t::configure. 0 or
// log_bad_value; log_sink_failed when the sink can no longer be created.
uint32_t configure_logger(uint32_t max_size, uint32_t max_index);

} // namespace rkb
