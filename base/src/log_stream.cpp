#include "log_stream.h"

#include "local_time.h"
#include "util.h"

namespace rkb {

namespace {

// The ids of a thread do not change, so their text is made once per thread.
struct thread_tag_t {
    char text[sizeof "[4294967295:4294967295:4294967295]\t" + 1];
    size_t length;
};

thread_tag_t make_thread_tag()
{
    thread_tag_t tag{};
    text_stream_t stream(tag.text, sizeof tag.text);
    stream << "[" << process_id() << ":" << thread_id() << ":" << thread_handle() << "]\t";
    tag.length = stream.length();
    return tag;
}

std::string_view thread_tag()
{
    thread_local const thread_tag_t tag = make_thread_tag();
    return {tag.text, tag.length};
}

} // namespace

log_stream_t::log_stream_t(
    char* buffer, size_t size, const char* level_name, const char* module_name)
    : text_stream_t(buffer, size)
{
    *this << local_time() << "\t";
    if (module_name)
        *this << module_name << "\t";
    *this << thread_tag();
    if (level_name)
        *this << level_name << "\t";
}

} // namespace rkb
