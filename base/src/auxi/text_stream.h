// Formats text into a buffer that the caller provides, without allocating and without throwing.
#pragma once

#include "base/src/auxi/auxi_number.h"
#include "base/src/util/no_copy.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace rkb {

struct local_time_t;

// Written as 32 upper-case hexadecimal digits in the order of the bytes, grouped by dashes.
struct identifier_t {
    uint8_t bytes[16];
};

// The caller owns the buffer, which must outlive the stream. It always holds a NUL-terminated text.
// With a null buffer or a size of 0 the stream stays empty. Not thread-safe.
//
// What does not fit is cut or left out:
// - NUL-terminated text is cut (in a hexadecimal radix: between two bytes);
// - text with a length is written whole or not at all;
// - values (integers, booleans, floating-point numbers, pointers, times, identifiers) are written
//   only if the widest text of their type plus one byte would fit, whatever the value. They are
//   never cut. If a value is left out, good() is false until a later value fits. Floating-point
//   numbers have a short and a long form, each with its own widest text: see auxi_number.h.
class text_stream_t : no_copy {
public:
    // `size` is that of `buffer` in bytes, including one for the terminating NUL.
    text_stream_t(char* buffer, size_t size);
    virtual ~text_stream_t() = default;

    // Empties the text, sets the decimal radix and makes good() true.
    virtual void reset();

    [[nodiscard]] size_t length() const { return static_cast<size_t>(m_cursor - m_begin); }
    [[nodiscard]] const char* text() const { return m_begin; }

    // Whether the last value fitted. Text does not change this.
    [[nodiscard]] bool good() const { return m_good; }

    // One of the radix_ constants. With any other radix an integer is not written: the stream fills
    // all but one of its free bytes with NULs, so that at most one byte can follow.
    void set_radix(uint32_t radix);
    [[nodiscard]] uint32_t radix() const { return m_radix; }

    // Text up to its NUL; null writes nothing. In the hexadecimal radices all text is written as
    // two digits per byte. Inline, so that the length of a literal is a constant.
    text_stream_t& operator<<(const char* text)
    {
        return text ? append_cut(text, __builtin_strlen(text)) : *this;
    }

    // A string, or bytes with a length.
    text_stream_t& operator<<(std::string_view text);

    // A character is written as a number, like any integer of 8 bits.
    text_stream_t& operator<<(char value) { return put_signed(value, sizeof value); }
    text_stream_t& operator<<(signed char value) { return put_signed(value, sizeof value); }
    text_stream_t& operator<<(unsigned char value) { return put_unsigned(value, sizeof value); }
    text_stream_t& operator<<(short value) { return put_signed(value, sizeof value); }
    text_stream_t& operator<<(unsigned short value) { return put_unsigned(value, sizeof value); }
    text_stream_t& operator<<(int value) { return put_signed(value, sizeof value); }
    text_stream_t& operator<<(unsigned value) { return put_unsigned(value, sizeof value); }
    text_stream_t& operator<<(long value) { return put_signed(value, sizeof value); }
    text_stream_t& operator<<(unsigned long value) { return put_unsigned(value, sizeof value); }
    text_stream_t& operator<<(long long value) { return put_signed(value, sizeof value); }
    text_stream_t& operator<<(unsigned long long value)
    {
        return put_unsigned(value, sizeof value);
    }

    // "true" or "false", in every radix.
    text_stream_t& operator<<(bool value);

    // "0x" and 16 lower-case digits, in every radix.
    text_stream_t& operator<<(const void* pointer);

    // Two decimals, in every radix. Numbers above ftoa_limit (float) or lftoa_limit (double) are
    // written in the long form. Numbers below the negative limit and NaN are left out and logged as
    // an assert line of module 1.
    text_stream_t& operator<<(float value);
    text_stream_t& operator<<(double value);

    // month/day/year hour:minute:second:milliseconds. The milliseconds have three digits, the year
    // as many as it needs, all others two. If a field is too large, only its last digits are
    // written.
    text_stream_t& operator<<(const local_time_t& time);

    text_stream_t& operator<<(const identifier_t& identifier);

private:
    text_stream_t& put_signed(long long value, size_t bytes)
    {
        return put(static_cast<uint64_t>(value), bytes, value < 0);
    }
    text_stream_t& put_unsigned(unsigned long long value, size_t bytes)
    {
        return put(value, bytes, false);
    }

    text_stream_t& append_cut(const char* text, size_t length)
    {
        if (!m_hex_digits && length <= remaining()) [[likely]] {
            append(text, length);
            return *this;
        }
        return append_cut_or_hex({text, length});
    }

    text_stream_t& put(uint64_t bits, size_t bytes, bool negative);
    text_stream_t& append_cut_or_hex(std::string_view text);
    text_stream_t& put_hex_bytes(std::string_view bytes);
    text_stream_t& put_real(
        double value, double limit, size_t short_reserve, size_t long_reserve, const char* message);

    size_t remaining() const { return static_cast<size_t>(m_end - m_cursor); }
    bool reserve(size_t bytes) { return m_good = remaining() >= bytes; }
    void set_end(char* end)
    {
        assert(end >= m_begin && end <= m_end);
        m_cursor = end;
        *end = '\0';
    }
    void append(const char* bytes, size_t length)
    {
        if (length)
            memcpy(m_cursor, bytes, length);
        set_end(m_cursor + length);
    }
    void skip_to_last_byte();

    char m_nothing = '\0'; // the text of a stream that has no buffer
    bool m_good = true;
    uint32_t m_radix = radix_decimal;
    const char* m_hex_digits = nullptr; // of the hexadecimal radices
    char* m_begin;
    char* m_cursor; // the text's NUL
    char* m_end;    // the buffer's last byte
};

} // namespace rkb
