#include "base/src/auxi/log_stream.h"

#include "base/src/auxi/auxi_digits.h"
#include "base/src/util/local_time.h"
#include "base/src/util/util.h"

#include <cassert>
#include <utility>

namespace rkb {

namespace {

// Text that is the same in most lines of a thread is formatted once. This matters because a line is
// built right after the system call that wrote the line before, with cold processor caches.
struct cached_text_t {
    char text[48] = {};
    size_t length = 0;

    template <typename... pieces_t>
    void set(const pieces_t&... pieces)
    {
        text_stream_t stream(text, sizeof text);
        (stream << ... << pieces);
        length = stream.length();
        assert(stream.good() && length > 0);
    }
};

// "03/14/2026 09:05:07:042\t". Within a second only the milliseconds change.
std::string_view time_text()
{
    thread_local constinit cached_text_t cache;
    thread_local constinit local_time_t cached_second{};
    local_time_t second = local_time();
    const uint32_t milliseconds = std::exchange(second.milliseconds, uint16_t{0});
    if (cache.length == 0 || second != cached_second) {
        cached_second = second;
        cache.set(second, "\t");
    }
    put_three_digits(cache.text + cache.length - sizeof "042", milliseconds);
    return {cache.text, cache.length};
}

// "[process:thread:handle]\t"
std::string_view ids_text()
{
    thread_local constinit cached_text_t cache;
    thread_local constinit uint32_t cached_thread = 0; // differs from thread_id() after fork()
    const uint32_t thread = thread_id();
    if (thread != cached_thread) {
        cached_thread = thread;
        cache.set("[", process_id(), ":", thread, ":", thread_handle(), "]\t");
    }
    return {cache.text, cache.length};
}

} // namespace

log_stream_t::log_stream_t(
    char* buffer, size_t size, const char* level_name, const char* module_name)
    : text_stream_t(buffer, size)
{
    *this << time_text();
    if (module_name)
        *this << module_name << "\t";
    *this << ids_text();
    if (level_name)
        *this << level_name << "\t";
}

} // namespace rkb
