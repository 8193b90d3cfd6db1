#include "base/src/auxi/text_stream.h"
#include "base/src/util/local_time.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

// The text in a stream with `room` free characters, between bytes that it must not touch, and
// whether the stream is good.
std::pair<std::string, bool> stream(size_t room, uint32_t radix, const auto& write)
{
    const std::string guard = "################";
    std::string bytes = guard + std::string(room + 1, '-') + guard;
    rkb::text_stream_t stream(&bytes[guard.size()], room + 1);
    stream.set_radix(radix);
    write(stream);
    EXPECT_TRUE(bytes.starts_with(guard) && bytes.ends_with(guard));
    EXPECT_EQ(stream.text()[stream.length()], '\0');
    return {std::string(stream.text(), stream.length()), stream.good()};
}

// A single value; nothing if it is left out.
std::string written(auto value, size_t room, uint32_t radix = 10)
{
    const auto [text, good] = stream(room, radix, [&](auto& s) { s << value; });
    EXPECT_EQ(good, !text.empty());
    return text;
}

template <typename integer_t>
std::string expected(integer_t value, uint32_t radix)
{
    if (radix == 10)
        return std::to_string(value);
    char digits[65] = "";
    const auto bits = static_cast<std::make_unsigned_t<integer_t>>(value);
    std::to_chars(digits, std::end(digits), bits, radix == 256 ? 16 : static_cast<int>(radix));
    std::string text = digits;
    const size_t width = radix == 8 ? 1 : sizeof value * (radix == 2 ? 8 : 2);
    text.insert(0, width - std::min(width, text.size()), '0');
    if (radix == 16)
        std::transform(text.begin(), text.end(), text.begin(), toupper);
    return text;
}

std::string two_decimals(double value)
{
    char text[400];
    snprintf(text, sizeof text, "%.2f", value);
    return text;
}

template <typename integer_t>
void expect_integers()
{
    using limits_t = std::numeric_limits<integer_t>;
    std::vector<integer_t> values{limits_t::min(), limits_t::max(), 0, static_cast<integer_t>(-1)};
    integer_t power = 1;
    for (int digits = 0; digits < limits_t::digits10; ++digits) {
        power = static_cast<integer_t>(power * 10);
        values.insert(values.end(), {static_cast<integer_t>(power - 1), power});
    }
    for (const uint32_t radix : {2u, 8u, 10u, 16u, 256u}) {
        const size_t widest = std::max(
            expected(std::numeric_limits<std::make_signed_t<integer_t>>::min(), radix).size(),
            expected(static_cast<std::make_unsigned_t<integer_t>>(-1), radix).size());
        for (const integer_t value : values) {
            EXPECT_EQ(written(value, widest + 1, radix), expected(value, radix)) << radix;
            EXPECT_EQ(written(value, widest, radix), "") << radix;
        }
    }
}

TEST(TextStream, WritesIntegersInEveryRadixIfTheWidestOfTheirTypeAndOneByteFit)
{
    []<typename... integers_t>(std::tuple<integers_t...>) { (expect_integers<integers_t>(), ...); }(
        std::tuple<signed char, unsigned char, char, short, unsigned short, int, unsigned, long,
            unsigned long, long long, unsigned long long>());
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
    for (const double value : values) {
        const size_t room = value > 9223372036854775808.0 ? 313 : 24;
        ASSERT_EQ(written(value, room), two_decimals(value));
        ASSERT_EQ(written(value, room - 1), "");
        const auto single = static_cast<float>(value);
        if (!(single >= -2147483648.0f))
            continue;
        const size_t room_of_float = single > 2147483648.0f ? 43 : 15;
        ASSERT_EQ(written(single, room_of_float), two_decimals(double{single}));
        ASSERT_EQ(written(single, room_of_float - 1), "");
    }
    for (const double value : {-infinity, -1e30, std::nan(""), -std::nan("")}) {
        EXPECT_EQ(written(value, 400), "");
        EXPECT_EQ(written(static_cast<float>(value), 400), "");
    }
}

TEST(TextStream, CutsTextSkipsStringsAndKeepsValuesWhole)
{
    static const rkb::local_time_t time{2026, 3, 14, 9, 5, 7, 42, 6};
    static const rkb::local_time_t odd_time{65535, 1000, 999, 1099, 0, 0, 65535, 0};
    static const rkb::identifier_t id{{0, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99,
        0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}};
    static const char* const null = nullptr;
    static void* const address = reinterpret_cast<void*>(0xABCDEF);
    static const std::string exact(2048, 'x');
    static const std::string longer = exact + "y";
    struct {
        const char* what;
        uint32_t room;
        uint32_t radix;
        void (*write)(rkb::text_stream_t&);
        std::string expected;
        bool good = true;
    } const cases[] = {
        {"text that fits exactly", 2048, 10, [](auto& s) { s << exact.c_str(); }, exact},
        {"text one too long", 2048, 10, [](auto& s) { s << longer.c_str() << "z"; }, exact},
        {"null text", 8, 10, [](auto& s) { s << null << "a"; }, "a"},
        {"text in hex", 8, 16, [](auto& s) { s << "J\xFF"; }, "4AFF"},
        {"text in lower hex, cut between bytes", 5, 256, [](auto& s) { s << "JKL"; }, "4a4b"},
        {"text in binary is text", 8, 2, [](auto& s) { s << "J"; }, "J"},
        {"string that fits exactly", 2048, 10, [](auto& s) { s << exact; }, exact},
        {"string one too long", 2048, 10, [](auto& s) { s << longer << "z"; }, "z"},
        {"bytes with a NUL", 4, 10, [](auto& s) { s << "a\0b"sv; }, "a\0b"s},
        {"string in hex", 4, 16, [](auto& s) { s << "\x01\x02"sv; }, "0102"},
        {"string in hex, one too long", 5, 16, [](auto& s) { s << "abc"s; }, ""},
        {"booleans", 10, 16, [](auto& s) { s << true << false; }, "truefalse"},
        {"boolean without room", 5, 10, [](auto& s) { s << true; }, "", false},
        {"character", 8, 10, [](auto& s) { s << 'A' << '\xFF'; }, "65-1"},
        {"pointer", 35, 2, [](auto& s) { s << address << '\5'; }, "0x0000000000abcdef00000101"},
        {"pointer without room", 18, 10, [](auto& s) { s << address; }, "", false},
        {"time", 40, 16, [](auto& s) { s << time; }, "03/14/2026 09:05:07:042"},
        {"time out of range", 25, 10, [](auto& s) { s << odd_time; }, "00/99/65535 99:00:00:535"},
        {"time without room", 24, 10, [](auto& s) { s << time; }, "", false},
        {"identifier", 37, 2, [](auto& s) { s << id; }, "00112233-4455-6677-8899-AABBCCDDEEFF"},
        {"identifier without room", 36, 10, [](auto& s) { s << id; }, "", false},
        {"a later value that fits", 11, 10, [](auto& s) { s << 1 << uint8_t{2}; }, "2"},
        {"unknown radix", 6, 7, [](auto& s) { s << "ab" << 5 << "cd"; }, "ab\0\0\0c"s, false},
        {"unknown radix, full", 2, 7, [](auto& s) { s << "ab" << 5; }, "ab", false},
        {"reset", 12, 16, [](auto& s) { s << "abc" << 1, s.reset(), s << 7; }, "7"},
    };
    for (const auto& c : cases) {
        const auto [text, good] = stream(c.room, c.radix, c.write);
        EXPECT_EQ(text, c.expected) << c.what;
        EXPECT_EQ(good, c.good) << c.what;
    }
}

TEST(TextStream, WithoutABufferIsEmpty)
{
    char byte = 'x';
    for (auto [buffer, size] : {std::pair<char*, size_t>{nullptr, 10}, {&byte, 0}}) {
        rkb::text_stream_t stream(buffer, size);
        stream << "text" << 5 << 1.5 << true << std::string("s");
        EXPECT_STREQ(stream.text(), "");
        EXPECT_EQ(stream.length(), 0u);
    }
    EXPECT_EQ(byte, 'x');
}

} // namespace
