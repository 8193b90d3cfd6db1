#include "safe_c.h"

#include "safe_c_support.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace rkb;
using namespace rkb::safe_c;

TEST(MemcmpS, TellsTheDifferenceOfTheFirstUnequalBytes)
{
    for (const size_t size : {1u, 255u, 256u, 257u, 600u, 1024u}) {
        std::string a(size, 'x');
        std::string b(size, 'x');
        int diff = 77;
        EXPECT_EQ(memcmp_s(a.data(), size, b.data(), size, &diff), success);
        EXPECT_EQ(diff, 0);
        b.back() = '\xFF'; // more than 'x': bytes are unsigned
        EXPECT_EQ(memcmp_s(a.data(), size, b.data(), size, &diff), success);
        EXPECT_EQ(diff, 'x' - 0xFF);
        a.front() = 'z';
        EXPECT_EQ(memcmp_s(a.data(), size, b.data(), size, &diff), success);
        EXPECT_EQ(diff, size == 1 ? 'z' - 0xFF : 'z' - 'x');
    }
}

struct row_t {
    const char* before;
    size_t dest;
    size_t destsz;
    size_t src;
    size_t count;
    int code;
    const char* after;
};

TEST(MemcpyS, CopiesOnlyRangesApartAndMemmoveAny)
{
    const row_t rows[] = {
        {"##----##ab.d##", 2, 4, 8, 4, success, "##ab.d##ab.d##"},
        {"##----##abcd##", 2, 4, 8, 2, success, "##ab--##abcd##"},
        {"##abcd--##", 4, 4, 2, 2, success, "##abab--##"}, // just behind the source
        {"##--ab##", 2, 2, 4, 2, success, "##abab##"},     // just before it
        {"##abcd--##", 4, 4, 2, 3, overlap, "##ababc-##"},
        {"##---abc##", 2, 4, 5, 3, overlap, "##abcabc##"}, // only the unused end of the four
        {"##abcd##", 2, 4, 2, 4, overlap, "##abcd##"},
    };
    for (const row_t& row : rows) {
        SCOPED_TRACE(row.before);
        std::string bytes = memory(row.before);
        EXPECT_EQ(memcpy_s(&bytes[row.dest], row.destsz, &bytes[row.src], row.count), row.code);
        EXPECT_EQ(bytes, memory(row.code == success ? row.after : row.before));
        bytes = memory(row.before);
        EXPECT_EQ(memmove_s(&bytes[row.dest], row.destsz, &bytes[row.src], row.count), success);
        EXPECT_EQ(bytes, memory(row.after));
    }
}

TEST(MemsetS, FillsWithTheLowByte)
{
    std::string bytes = "##------##";
    EXPECT_EQ(memset_s(&bytes[2], 6, 0x100 + 'x', 4), success);
    EXPECT_EQ(bytes, "##xxxx--##");
}

TEST(MemoryFunctions, TakeSizesUpToTheirLimit)
{
    std::vector<char> from(max_memory_size, 'x');
    std::vector<char> to(max_memory_size);
    int diff = 0;
    EXPECT_EQ(memcpy_s(to.data(), to.size(), from.data(), from.size()), success);
    EXPECT_EQ(memcmp_s(to.data(), to.size(), from.data(), from.size(), &diff), success);
    EXPECT_EQ(diff, 0);
}

} // namespace
