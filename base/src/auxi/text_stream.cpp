#include "base/src/auxi/text_stream.h"

#include "base/src/auxi/auxi_digits.h"
#include "base/src/log/log.h"
#include "base/src/util/local_time.h"

#include <algorithm>
#include <cstring>

namespace rkb {

namespace {

constexpr const char* source_file = "../src/auxi"; // as assert lines name it

// One byte more than the widest text, as for the integers.
constexpr size_t bool_reserve = sizeof "false";
constexpr size_t pointer_reserve = sizeof "0x0123456789abcdef";
constexpr size_t time_reserve = sizeof "12/31/65535 23:59:59:999";
constexpr size_t identifier_reserve = sizeof "00112233-4455-6677-8899-AABBCCDDEEFF";

constexpr bool dash_before(size_t byte)
{
    return byte == 4 || byte == 6 || byte == 8 || byte == 10; // at 8, 13, 18 and 23 of the text
}

char* put_two_digits_then(char* to, uint32_t value, char separator)
{
    to = put_two_digits(to, value);
    *to = separator;
    return to + 1;
}

} // namespace

text_stream_t::text_stream_t(char* buffer, size_t size)
    : m_begin(buffer && size ? buffer : &m_nothing)
    , m_cursor(m_begin)
    , m_end(buffer && size ? buffer + (size - 1) : &m_nothing)
{
    text_stream_t::reset();
}

void text_stream_t::reset()
{
    set_radix(radix_decimal);
    m_good = true;
    *m_end = '\0';
    set_end(m_begin);
}

void text_stream_t::set_radix(uint32_t radix)
{
    m_radix = radix;
    m_hex_digits = hex_digits(radix);
}

text_stream_t& text_stream_t::operator<<(std::string_view text)
{
    if (text.size() > (m_hex_digits ? remaining() / 2 : remaining()))
        return *this;
    if (m_hex_digits)
        return put_hex_bytes(text);
    append(text.data(), text.size());
    return *this;
}

text_stream_t& text_stream_t::append_cut_or_hex(std::string_view text)
{
    if (m_hex_digits)
        return put_hex_bytes(text.substr(0, remaining() / 2));
    append(text.data(), std::min(text.size(), remaining()));
    return *this;
}

text_stream_t& text_stream_t::operator<<(bool value)
{
    if (reserve(bool_reserve))
        value ? append("true", 4) : append("false", 5);
    return *this;
}

text_stream_t& text_stream_t::operator<<(const void* pointer)
{
    if (!reserve(pointer_reserve))
        return *this;
    const integer_t address{reinterpret_cast<uintptr_t>(pointer), sizeof pointer, false};
    append("0x", 2);
    set_end(put_integer(m_cursor, address, radix_hex_lower));
    return *this;
}

text_stream_t& text_stream_t::operator<<(float value)
{
    return put_real(double{value}, ftoa_limit, ftoa_reserve, float_reserve, "ftoa, too bigger");
}

text_stream_t& text_stream_t::operator<<(double value)
{
    return put_real(value, lftoa_limit, lftoa_reserve, double_reserve, "lftoa too bigger");
}

text_stream_t& text_stream_t::operator<<(const local_time_t& time)
{
    if (!reserve(time_reserve))
        return *this;
    char* to = put_two_digits_then(m_cursor, time.month, '/');
    to = put_two_digits_then(to, time.day, '/');
    to = put_decimal(to, time.year);
    *to++ = ' ';
    to = put_two_digits_then(to, time.hour, ':');
    to = put_two_digits_then(to, time.minute, ':');
    to = put_two_digits_then(to, time.second, ':');
    set_end(put_three_digits(to, time.milliseconds));
    return *this;
}

text_stream_t& text_stream_t::operator<<(const identifier_t& identifier)
{
    if (!reserve(identifier_reserve))
        return *this;
    char* to = m_cursor;
    for (size_t i = 0; i < sizeof identifier.bytes; ++i) {
        if (dash_before(i))
            *to++ = '-';
        to = put_hex_byte(to, identifier.bytes[i], hex_upper);
    }
    set_end(to);
    return *this;
}

text_stream_t& text_stream_t::put(uint64_t bits, size_t bytes, bool negative)
{
    const size_t wanted = integer_reserve(m_radix, bytes);
    if (!wanted)
        skip_to_last_byte();
    else if (reserve(wanted))
        set_end(put_integer(m_cursor, {bits, bytes, negative}, m_radix));
    return *this;
}

text_stream_t& text_stream_t::put_real(
    double value, double limit, size_t short_reserve, size_t long_reserve, const char* message)
{
    const bool is_long = value > limit;
    if (!reserve(is_long ? long_reserve : short_reserve))
        return *this;
    char* const end = is_long ? put_fixed_large(m_cursor, remaining(), value)
                              : put_fixed(m_cursor, value, limit);
    m_good = end != nullptr;
    if (end)
        set_end(end);
    else
        RKB_LOG_ASSERT(source_file, __LINE__, message);
    return *this;
}

text_stream_t& text_stream_t::put_hex_bytes(std::string_view bytes)
{
    char* to = m_cursor;
    for (const char byte : bytes)
        to = put_hex_byte(to, static_cast<uint8_t>(byte), m_hex_digits);
    set_end(to);
    return *this;
}

// Writes NULs, because length() counts the skipped bytes and the buffer may be uninitialised.
void text_stream_t::skip_to_last_byte()
{
    m_good = false;
    const size_t skipped = remaining() - std::min<size_t>(remaining(), 1);
    memset(m_cursor, '\0', skipped);
    set_end(m_cursor + skipped);
}

} // namespace rkb
