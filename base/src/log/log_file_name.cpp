#include "base/src/log/log_file_name.h"

#include "base/src/auxi/text_stream.h"

#include <charconv>
#include <cstdio>

namespace rkb {

log_file_stamp_t log_file_stamp(const local_time_t& time, uint32_t process, uint32_t index)
{
    log_file_stamp_t stamp{};
    snprintf(stamp.data(), stamp.size(), "%4hu%02hu%02hu_%02hu%02hu%02hu_%d_%s_%d", time.year,
        time.month, time.day, time.hour, time.minute, time.second, static_cast<int>(process),
        log_file_tag, static_cast<int>(index));
    return stamp;
}

std::optional<log_file_suffix_t> log_file_suffix(uint32_t index, std::string_view extension)
{
    log_file_suffix_t suffix{};
    text_stream_t stream(suffix.data(), suffix.size());
    stream << "_" << log_file_tag << "_" << index << ".";
    const size_t length = stream.length() + extension.size();
    stream << extension;
    return stream.length() == length ? std::optional(suffix) : std::nullopt;
}

std::optional<uint32_t> parse_log_file_id(std::string_view text)
{
    constexpr const char* white_space = " \t\r\n";
    const size_t begin = text.find_first_not_of(white_space);
    if (begin == std::string_view::npos)
        return std::nullopt;
    text = text.substr(begin, text.find_last_not_of(white_space) - begin + 1);
    uint32_t id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    if (error != std::errc{} || end != text.data() + text.size())
        return std::nullopt;
    return id;
}

uint32_t first_log_file_index(std::optional<uint32_t> last, uint32_t max_index)
{
    if (!last || max_index == 0)
        return 0;
    return static_cast<uint32_t>((uint64_t{*last} + 1) % max_index);
}

uint32_t next_log_file_index(uint32_t index, uint32_t max_index)
{
    return index < max_index ? index + 1 : 0;
}

} // namespace rkb
