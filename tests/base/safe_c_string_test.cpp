#include "safe_c.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

using namespace rkb::safe_c;

// A stretch of memory as a text in which '.' stands for a NUL, '#' for what no call may touch and
// '-' for bytes that a call might write. Comparing the whole picture shows every stray write.
std::string memory(std::string picture)
{
    for (char& c : picture)
        c = c == '.' ? '\0' : c;
    return picture;
}

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

void expect_argument_codes(const call_t& call, int code_for_size_zero)
{
    std::string bytes(max_string_size + 64, '#');
    bytes[0] = '\0';
    const std::string untouched = bytes;
    EXPECT_EQ(call(nullptr, 8, "x"), null_pointer);
    EXPECT_EQ(call(bytes.data(), 0, nullptr), null_pointer);
    EXPECT_EQ(call(bytes.data(), 0, "x"), code_for_size_zero);
    EXPECT_EQ(call(bytes.data(), max_string_size + 1, "x"), over_limit);
    EXPECT_EQ(bytes, untouched);

    const std::string longest(max_string_size - 1, 'x');
    EXPECT_EQ(call(bytes.data(), max_string_size, (longest + 'x').c_str()), no_space);
    EXPECT_EQ(bytes, untouched);
    EXPECT_EQ(call(bytes.data(), max_string_size, longest.c_str()), success);
    EXPECT_EQ(bytes, longest + '\0' + std::string(64, '#'));
}

TEST(StrcpyS, CopiesOrLeavesEverythingAsItWas)
{
    expect_argument_codes(rkb::strcpy_s, bad_size);
    expect_rows(rkb::strcpy_s,
        {
            {"##------##abc.##", 2, 6, 10, success, "##abc.--##abc.##"},
            {"##------##.-##", 2, 6, 10, success, "##.-----##.-##"},
            {"##----##abc.##", 2, 4, 8, success, "##abc.##abc.##"},
            {"##---###abc.##", 2, 3, 8, no_space, "##---###abc.##"},
            {"##-###abcd", 2, 1, 6, no_space, "##-###abcd"}, // reads no further than its size
            {"##abc.--##", 2, 6, 2, overlap, "##abc.--##"},
            {"##.-----##", 2, 6, 2, overlap, "##.-----##"},
            {"##--ab.-##", 2, 6, 4, overlap, "##--ab.-##"},
            {"##---ab.##", 2, 6, 5, success, "##ab.ab.##"}, // ends just before the source
            {"##ab.---##", 5, 3, 2, success, "##ab.ab.##"}, // starts just behind it
            {"##ab.---##", 4, 3, 2, overlap, "##ab.---##"},
            {"##abcd--##", 3, 3, 2, overlap, "##abcd--##"},  // too long as well: overlap first
            {"##abcdef##", 2, 3, 5, no_space, "##abcdef##"}, // would meet only behind its size
        });
}

TEST(StrcatS, AppendsOrLeavesEverythingAsItWas)
{
    expect_argument_codes(rkb::strcat_s, no_space);
    expect_rows(rkb::strcat_s,
        {
            {"##ab.-----##cd.##", 2, 8, 12, success, "##abcd.---##cd.##"},
            {"##ab.--##cd.##", 2, 5, 9, success, "##abcd.##cd.##"},
            {"##ab.-###cd.##", 2, 4, 9, no_space, "##ab.-###cd.##"},
            {"##abc.##.##", 2, 4, 8, success, "##abc.##.##"},
            {"##abc.##d.##", 2, 4, 8, no_space, "##abc.##d.##"},
            {"##abcd##.##", 2, 4, 8, no_space, "##abcd##.##"},  // no terminator within the size
            {"##ab.-----##", 2, 8, 2, overlap, "##ab.-----##"}, // onto itself
            {"##ab.-----##", 2, 8, 3, overlap, "##ab.-----##"}, // its own tail
            {"##ab.-----##", 2, 8, 4, overlap, "##ab.-----##"},
            {"##ab.##", 2, 3, 2, no_space, "##ab.##"}, // overlapping as well: the room first
            {"##a.--bcd.##", 2, 8, 6, overlap, "##a.--bcd.##"},
            {"##a.-bc.--##", 2, 8, 5, overlap, "##a.-bc.--##"},
            {"##a.--bc.-##", 2, 8, 6, success, "##abc.bc.-##"}, // ends just before the source
            {"##x.a.---##", 4, 5, 2, success, "##x.ax.--##"},   // a source before the destination
        });
}

} // namespace
