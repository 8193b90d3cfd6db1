#include "text_stream.h"

#include "local_time.h"

#include <algorithm>
#include <cstring>

namespace rkb {

namespace {

// One byte more than the widest text, as for the integers.
constexpr size_t bool_reserve = sizeof "false";
constexpr size_t pointer_reserve = sizeof "0x0123456789abcdef";
constexpr size_t time_reserve = sizeof "12/31/65535 23:59:59:999";
constexpr size_t identifier_reserve = sizeof "00112233-4455-6677-8899-AABBCCDDEEFF";

constexpr bool dash_before(size_t byte)
{
    return byte == 4 || byte == 6 || byte == 8 || byte == 10; // at 8, 13, 18 and 23 of the text
}

char* put_then(char* (*put)(char*, uint32_t), char* to, uint32_t value, char separator)
{
    to = put(to, value);
    *to = separator;
    return to + 1;
}

} // namespace

text_stream_t::text_stream_t(char* buffer, size_t size)
    : m_begin(buffer && size ? buffer : &m_nothing)
    , m_capacity(buffer && size ? size - 1 : 0)
{
    text_stream_t::reset();
}

void text_stream_t::reset()
{
    m_cursor = m_begin;
    m_remaining = m_capacity;
    m_radix = radix_decimal;
    m_good = true;
    m_begin[0] = '\0';
    m_begin[m_capacity] = '\0';
}

text_stream_t& text_stream_t::operator<<(const char* text)
{
    if (!text)
        return *this;
    if (const char* digits = hex_digits(m_radix))
        return put_hex_bytes({text, strnlen(text, m_remaining / 2)}, digits);
    append(text, strnlen(text, m_remaining));
    return *this;
}

text_stream_t& text_stream_t::operator<<(std::string_view text)
{
    const char* digits = hex_digits(m_radix);
    if (text.size() > (digits ? m_remaining / 2 : m_remaining))
        return *this;
    if (digits)
        return put_hex_bytes(text, digits);
    append(text.data(), text.size());
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
    append("0x", 2);
    const uint32_t radix_before = m_radix;
    m_radix = radix_hex_lower;
    *this << reinterpret_cast<uintptr_t>(pointer);
    m_radix = radix_before;
    return *this;
}

text_stream_t& text_stream_t::operator<<(const local_time_t& time)
{
    if (!reserve(time_reserve))
        return *this;
    char* to = put_then(put_two_digits, m_cursor, time.month, '/');
    to = put_then(put_two_digits, to, time.day, '/');
    to = put_decimal(to, time.year);
    *to++ = ' ';
    to = put_then(put_two_digits, to, time.hour, ':');
    to = put_then(put_two_digits, to, time.minute, ':');
    to = put_then(put_two_digits, to, time.second, ':');
    advance(put_three_digits(to, time.milliseconds));
    return *this;
}

text_stream_t& text_stream_t::operator<<(const identifier_t& identifier)
{
    if (!reserve(identifier_reserve))
        return *this;
    const char* digits = hex_digits(radix_hex_upper);
    char* to = m_cursor;
    for (size_t i = 0; i < sizeof identifier.bytes; ++i) {
        if (dash_before(i))
            *to++ = '-';
        to = put_hex_byte(to, identifier.bytes[i], digits);
    }
    advance(to);
    return *this;
}

text_stream_t& text_stream_t::put(const integer_t& value)
{
    const size_t wanted = integer_reserve(m_radix, value.bytes);
    if (!wanted)
        skip_to_last_byte();
    else if (reserve(wanted))
        advance(put_integer(m_cursor, value, m_radix));
    return *this;
}

text_stream_t& text_stream_t::put_hex_bytes(std::string_view bytes, const char* digits)
{
    char* to = m_cursor;
    for (const char byte : bytes)
        to = put_hex_byte(to, static_cast<uint8_t>(byte), digits);
    advance(to);
    return *this;
}

bool text_stream_t::reserve(size_t bytes)
{
    m_good = m_remaining >= bytes;
    return m_good;
}

void text_stream_t::advance(const char* end)
{
    m_remaining -= static_cast<size_t>(end - m_cursor);
    m_cursor = m_begin + (m_capacity - m_remaining);
    *m_cursor = '\0';
}

void text_stream_t::append(const char* bytes, size_t length)
{
    if (length)
        memcpy(m_cursor, bytes, length);
    advance(m_cursor + length);
}

// NULs, because length() covers the skipped bytes and they may be of an uninitialised buffer.
void text_stream_t::skip_to_last_byte()
{
    m_good = false;
    const size_t skipped = m_remaining - std::min<size_t>(m_remaining, 1);
    memset(m_cursor, '\0', skipped);
    advance(m_cursor + skipped);
}

} // namespace rkb
