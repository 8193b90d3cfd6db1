#include "base/src/auxi/text_stream.h"
#include "base/src/util/local_time.h"

#include <gtest/gtest.h>

#include <bitset>
#include <cmath>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>

namespace {

using namespace std::string_literals;

// The text that is written into `room` free characters, between bytes that must not be touched, and
// "!" if the stream is not good.
std::string written(size_t room, uint32_t radix, const auto& write)
{
    const std::string guard = "################";
    std::string bytes = guard + std::string(room + 1, '-') + guard;
    rkb::text_stream_t stream(&bytes[guard.size()], room + 1);
    stream.set_radix(radix);
    write(stream);
    EXPECT_TRUE(bytes.starts_with(guard) && bytes.ends_with(guard));
    EXPECT_EQ(stream.text()[stream.length()], '\0');
    return std::string(stream.text(), stream.length()) + (stream.good() ? "" : "!");
}

// Expects the text of a single value in that room, and none in less.
void expect_value(auto value, size_t room, const std::string& text, uint32_t radix = 10)
{
    const auto write = [&](auto& s) { s << value; };
    ASSERT_EQ(written(room, radix, write), text);
    ASSERT_EQ(written(room - 1, radix, write), "!") << text;
}

std::string formatted(auto... parts)
{
    std::ostringstream stream;
    (stream << ... << parts);
    return stream.str();
}

template <typename integer_t>
void expect_integers()
{
    using limits_t = std::numeric_limits<integer_t>;
    constexpr int size = sizeof(integer_t);
    constexpr size_t decimal_room[] = {0, 5, 7, 0, 12, 0, 0, 0, 21};
    std::vector<integer_t> values{limits_t::min(), limits_t::max(), 0, static_cast<integer_t>(-1)};
    for (integer_t power = 1; power <= limits_t::max() / 10;) {
        power = static_cast<integer_t>(power * 10);
        values.insert(values.end(), {static_cast<integer_t>(power - 1), power});
    }
    for (const integer_t value : values) {
        const uint64_t bits = static_cast<std::make_unsigned_t<integer_t>>(value);
        const auto wide = std::setw(size * 2);
        expect_value(
            value, size * 8 + 1, std::bitset<64>(bits).to_string().substr(64 - size * 8), 2);
        expect_value(value, (size * 8 + 2) / 3 + 1, formatted(std::oct, bits), 8);
        expect_value(value, decimal_room[size], std::to_string(value));
        const std::string hex = formatted(std::hex, std::setfill('0'), wide, bits);
        expect_value(value, size * 2 + 1, hex, 256);
        expect_value(value, size * 2 + 1,
            formatted(std::hex, std::uppercase, std::setfill('0'), wide, bits), 16);
    }
}

TEST(TextStream, WritesIntegersInEveryRadixIfTheWidestOfTheirTypeAndOneByteFit)
{
    []<typename... integers_t>(integers_t...) { (expect_integers<integers_t>(), ...); }(
        char{}, int8_t{}, uint8_t{}, int16_t{}, uint16_t{}, 0, 0U, 0L, 0UL, 0LL, 0ULL);
}

TEST(TextStream, WritesRealsAsPrintfDoesIfTheWidestOfTheirFormFits)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    std::vector<double> values{0.0, -0.0, 0.005, 0.015, 0.125, 0.375, -0.001, 2.675, 0.995, 99.995,
        5e-324, 1e15 + 0.125, 4503599627370495.5, 2147483648.0, 2147483648.5, -2147483648.0, 3e9,
        9223372036854775807.0, -9223372036854775808.0, 1e19, 1.7976931348623157e308, infinity};
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i)
        values.push_back(std::ldexp(
            static_cast<double>(static_cast<int64_t>(random())), -static_cast<int>(random() % 80)));
    const auto two_decimals
        = [](double value) { return formatted(std::fixed, std::setprecision(2), value); };
    for (const double value : values) {
        expect_value(value, value > 9223372036854775808.0 ? 313 : 24, two_decimals(value));
        const auto single = static_cast<float>(value);
        if (single >= -2147483648.0f)
            expect_value(single, single > 2147483648.0f ? 43 : 15, two_decimals(single));
        ASSERT_FALSE(HasFailure()) << value;
    }
    for (const double value : {-infinity, -1e30, std::nan(""), -std::nan("")}) {
        expect_value(value, 400, "!");
        expect_value(static_cast<float>(value), 400, "!");
    }
}

TEST(TextStream, CutsTextSkipsStringsAndKeepsValuesWhole)
{
    const rkb::identifier_t id{{0, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB,
        0xCC, 0xDD, 0xEE, 0xFF}};
    const rkb::local_time_t time{2026, 3, 14, 9, 5, 7, 42, 6};
    const rkb::local_time_t odd_time{65535, 1000, 999, 1099, 0, 0, 65535, 0};
    expect_value(true, 6, "true", 16);
    expect_value(reinterpret_cast<void*>(0xABCDEF), 19, "0x0000000000abcdef", 2);
    expect_value(time, 25, "03/14/2026 09:05:07:042", 16);
    expect_value(odd_time, 25, "00/99/65535 99:00:00:535");
    expect_value(id, 37, "00112233-4455-6677-8899-AABBCCDDEEFF", 2);
    const char* const null = nullptr;
    EXPECT_EQ(written(4, 10, [](auto& s) { s << "abcd"; }), "abcd");
    EXPECT_EQ(written(4, 10,
                  [](auto& s) {
                      s << "abcde"
                        << "f";
                  }),
        "abcd");
    EXPECT_EQ(written(8, 10, [&](auto& s) { s << null << "a"; }), "a");
    EXPECT_EQ(written(8, 16, [](auto& s) { s << "J\xFF"; }), "4AFF");
    EXPECT_EQ(written(5, 256, [](auto& s) { s << "JKL"; }), "4a4b"); // cut between bytes
    EXPECT_EQ(written(8, 2, [](auto& s) { s << "J" << false; }), "Jfalse");
    EXPECT_EQ(written(4, 10, [](auto& s) { s << "a\0cd"s; }), "a\0cd"s);
    EXPECT_EQ(written(4, 10,
                  [](auto& s) {
                      s << "abcde"s
                        << "f";
                  }),
        "f");
    EXPECT_EQ(written(4, 16, [](auto& s) { s << "\x01\x02"s; }), "0102");
    EXPECT_EQ(written(5, 16, [](auto& s) { s << "abc"s; }), "");
    EXPECT_EQ(written(11, 10, [](auto& s) { s << 1 << uint8_t{2}; }), "2"); // only the later fits
    EXPECT_EQ(written(6, 7, [](auto& s) { s << "ab" << 5 << "cd"; }), "ab\0\0\0c!"s); // no radix
    EXPECT_EQ(written(2, 7, [](auto& s) { s << "ab" << 5; }), "ab!");
    EXPECT_EQ(written(12, 16, [](auto& s) { s << "abc" << 1, s.reset(), s << 7; }), "7");
}

TEST(TextStream, WithoutABufferIsEmpty)
{
    char byte = 'x';
    for (auto [buffer, size] : {std::pair<char*, size_t>{nullptr, 10}, {&byte, 0}}) {
        rkb::text_stream_t stream(buffer, size);
        stream << "text" << 5 << 1.5 << true << "s"s;
        EXPECT_EQ(stream.text() + ("|"s + byte), "|x");
    }
}

} // namespace
