#include "safe_c.h"

#include "safe_c_support.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

using namespace rkb::safe_c;

struct row_t {
    const char* before;
    size_t dest;
    size_t destsz;
    size_t src;
    int code;
    const char* after;
};

using call_t = std::function<int(char* dest, size_t destsz, const char* src)>;

void expect_rows(const call_t& call, const std::vector<row_t>& rows)
{
    for (const row_t& row : rows) {
        SCOPED_TRACE(std::string(row.before) + " size " + std::to_string(row.destsz));
        std::string bytes = memory(row.before);
        EXPECT_EQ(call(&bytes[row.dest], row.destsz, &bytes[row.src]), row.code);
        EXPECT_EQ(bytes, memory(row.after));
    }
}

// The largest size that is taken: one character less fits.
void expect_limit(const call_t& call)
{
    std::string bytes = '\0' + std::string(max_string_size + 63, '#');
    const std::string untouched = bytes;
    const std::string longest(max_string_size - 1, 'x');
    EXPECT_EQ(call(bytes.data(), max_string_size, (longest + 'x').c_str()), no_space);
    EXPECT_EQ(bytes, untouched);
    EXPECT_EQ(call(bytes.data(), max_string_size, longest.c_str()), success);
    EXPECT_EQ(bytes, longest + '\0' + std::string(64, '#'));
}

TEST(StrcpyS, CopiesOrLeavesEverythingAsItWas)
{
    expect_limit(rkb::strcpy_s);
    expect_rows(rkb::strcpy_s,
        {
            {"##------##abc.##", 2, 6, 10, success, "##abc.--##abc.##"},
            {"##----##abc.##", 2, 4, 8, success, "##abc.##abc.##"},
            {"##---###abc.##", 2, 3, 8, no_space, "##---###abc.##"},
            {"##-###abcd", 2, 1, 6, no_space, "##-###abcd"}, // reads no further than its size
            {"##abc.--##", 2, 6, 2, overlap, "##abc.--##"},
            {"##---ab.##", 2, 6, 5, success, "##ab.ab.##"}, // ends just before the source
            {"##ab.---##", 5, 3, 2, success, "##ab.ab.##"}, // starts just behind it
            {"##ab.---##", 4, 3, 2, overlap, "##ab.---##"},
            {"##abcd--##", 3, 3, 2, overlap, "##abcd--##"},  // too long as well: overlap first
            {"##abcdef##", 2, 3, 5, no_space, "##abcdef##"}, // would meet only behind its size
        });
}

TEST(StrcatS, AppendsOrLeavesEverythingAsItWas)
{
    expect_limit(rkb::strcat_s);
    expect_rows(rkb::strcat_s,
        {
            {"##ab.-----##cd.##", 2, 8, 12, success, "##abcd.---##cd.##"},
            {"##ab.--##cd.##", 2, 5, 9, success, "##abcd.##cd.##"},
            {"##abc.##d.##", 2, 4, 8, no_space, "##abc.##d.##"},
            {"##abcd##.##", 2, 4, 8, no_space, "##abcd##.##"},  // no terminator within the size
            {"##ab.-----##", 2, 8, 2, overlap, "##ab.-----##"}, // onto itself
            {"##ab.-----##", 2, 8, 4, overlap, "##ab.-----##"},
            {"##ab.##", 2, 3, 2, no_space, "##ab.##"}, // overlapping as well: the room first
            {"##a.--bcd.##", 2, 8, 6, overlap, "##a.--bcd.##"},
            {"##a.-bc.--##", 2, 8, 5, overlap, "##a.-bc.--##"},
            {"##a.--bc.-##", 2, 8, 6, success, "##abc.bc.-##"}, // ends just before the source
            {"##x.a.---##", 4, 5, 2, success, "##x.ax.--##"},   // a source before the destination
        });
}

call_t strncpy_of(size_t count)
{
    return [count](char* dest, size_t destsz, const char* src) {
        return rkb::strncpy_s(dest, destsz, src, count);
    };
}

TEST(StrncpyS, CopiesWhatIsWantedAndAlwaysTerminates)
{
    expect_limit(strncpy_of(max_string_size));
    expect_rows(strncpy_of(3),
        {
            {"##-----##abcdef", 2, 5, 9, success, "##abc.-##abcdef"},
            {"##-----##ab.###", 2, 5, 9, success, "##ab.--##ab.###"},
            {"##----##abc", 2, 4, 8, success, "##abc.##abc"}, // no NUL behind the three is needed
            {"##---##abc", 2, 3, 7, no_space, "##---##abc"},
            {"##abc---##", 5, 3, 2, no_space, "##abc---##"},
            {"##abc----##", 5, 4, 2, success, "##abcabc.##"}, // starts just behind the three
            {"##ab.--##", 4, 3, 2, overlap, "##ab.--##"},     // on the NUL
            {"##---abc##", 2, 4, 5, overlap, "##---abc##"},   // the new NUL would hit the source
            {"##----abc##", 2, 4, 6, success, "##abc.abc##"},
        });
}

TEST(StringLength, EndsAtTheNulOrTheSize)
{
    EXPECT_EQ(rkb::strnlen_s("abc", 4), 3u);
    EXPECT_EQ(rkb::strnlen_s("abc", max_string_size), 3u);
    EXPECT_EQ(rkb::wcsnlen_s(L"a\x20AC\x1F600", 9), 3u);
    EXPECT_EQ(rkb::wcsnlen_s(L"abc", 2), 2u);
}

struct tokens_t {
    const char* before;
    size_t strmax;
    std::vector<std::string> tokens;
    const char* after;
};

TEST(StrtokS, CutsAsThePlatformDoesWithinItsSize)
{
    const tokens_t rows[] = {
        {",;ab,c;;d.##", 9, {"ab", "c", "d"}, ",;ab.c.;d.##"},
        {"ab.##", 5, {"ab"}, "ab.##"},
        {".##", 3, {}, ".##"},
        {"ab,cd##", 4, {"ab"}, "ab.cd##"}, // the rest has no end within four
        {"abcd##", 4, {}, "abcd##"},
        {",,,##", 3, {}, ",,,##"},
        {"ab.##", 0, {}, "ab.##"},
    };
    for (const tokens_t& row : rows) {
        SCOPED_TRACE(row.before);
        std::string bytes = memory(row.before);
        std::vector<std::string> tokens;
        char* saved = bytes.data() + 1; // what it holds does not count when there is a string
        for (char* token = rkb::strtok_s(bytes.data(), row.strmax, ";,", &saved); token;
             token = rkb::strtok_s(nullptr, row.strmax, ";,", &saved))
            tokens.emplace_back(token);
        EXPECT_EQ(tokens, row.tokens);
        EXPECT_EQ(bytes, memory(row.after));
        EXPECT_EQ(rkb::strtok_s(nullptr, row.strmax, ";,", &saved), nullptr);
    }
}

} // namespace
