// The bounded copies, over every arrangement of a few bytes and at their largest sizes.
#include "base/src/safe_c/safe_c.h"
#include "tests/base/log_fixture.h"

#include <algorithm>

namespace {

using namespace rkb;
using namespace rkb::safe_c;

enum kind_t {
    of_text = 1, // ends at the source's NUL and writes one
    counts = 2,
    appends = 4,
    overlap_first = 8, // is looked for before the room
};

struct function_t {
    const char* name;
    int (*copy)(char* dest, size_t destsz, const char* src, size_t count);
    int kind;
    const char* no_space; // the messages after its name
    const char* overlap;  // null when the buffers may
};

const function_t functions[] = {
    {"memcpy_s", [](auto d, auto n, auto s, auto count) { return memcpy_s(d, n, s, count); },
        counts, " invalid parameters", " invalid parameters overlap is not allow"},
    {"memmove_s", [](auto d, auto n, auto s, auto count) { return memmove_s(d, n, s, count); },
        counts, " invalid parameters", nullptr},
    {"strcpy_s", [](auto d, auto n, auto s, auto) { return strcpy_s(d, n, s); },
        of_text | overlap_first, ", space is not enough", ", overlap is not allow"},
    {"strncpy_s", strncpy_s, of_text | counts, ", space is not enough",
        " invalid parameters overlap is not allow"},
    {"strcat_s", [](auto d, auto n, auto s, auto) { return strcat_s(d, n, s); }, of_text | appends,
        " invalid parameters", ", overlap is not allow"},
};

struct call_t {
    size_t dest; // where in the memory the two buffers begin
    size_t destsz;
    size_t src;
    size_t count;
};

// What the function should do to the memory, and its code.
int reference(const function_t& function, std::string& memory, const call_t& call)
{
    const auto is = [&](kind_t kind) { return (function.kind & kind) != 0; };
    if ((call.destsz == 0 && !is(appends)) || (call.count == 0 && is(counts)))
        return bad_size;
    std::string bytes = memory.substr(call.src, is(counts) ? call.count : memory.npos);
    size_t read = bytes.size();
    if (is(of_text)) {
        const size_t nul = bytes.find('\0');
        read = std::min(nul, read - 1) + 1;
        bytes = bytes.substr(0, nul) + '\0';
    }
    const size_t end = call.dest + call.destsz;
    const size_t to = is(appends) ? std::min(memory.find('\0', call.dest), end) : call.dest;
    const size_t touched = is(of_text) ? std::min(bytes.size(), end - to) : end - to;
    const bool meets
        = function.overlap && call.src < to + touched && to < call.src + std::min(read, end - to);
    if (to + bytes.size() > end && !(meets && is(overlap_first)))
        return no_space;
    if (meets)
        return overlap;
    memory.replace(to, bytes.size(), bytes);
    return success;
}

class BoundedCopy : public LogTest {
protected:
    BoundedCopy() { record_library(m_log); }

    // Makes a call, which has to report a code other than success.
    void expect_call(const function_t& function, char* dest, size_t destsz, const char* src,
        size_t count, int code)
    {
        const char* const cause = code == no_space ? function.no_space
            : code == overlap                      ? function.overlap
                                                   : " invalid parameters";
        m_log.lines.clear();
        EXPECT_EQ(function.copy(dest, destsz, src, count), code);
        ASSERT_EQ(m_log.lines.size(), code == success ? 0u : 1u);
        const std::string start
            = std::string("assert: msg[") + function.name + cause + ", (void *)";
        EXPECT_TRUE(code == success || m_log.message().starts_with(start)) << m_log.message();
    }

    // Makes a call of the function and of its reference.
    void expect_like_reference(const function_t& function, std::string memory, const call_t& call)
    {
        const std::string before = memory;
        std::string expected = memory;
        const int code = reference(function, expected, call);
        expect_call(function, &memory[call.dest], call.destsz, &memory[call.src], call.count, code);
        EXPECT_EQ(memory, expected);
        ASSERT_FALSE(HasFailure())
            << function.name << " in " << testing::PrintToString(before) << ": " << call.destsz
            << " bytes at " << call.dest << ", from " << call.src << ", count " << call.count;
    }

private:
    Recorder m_log;
};

// Five bytes, any of which may be NUL, between guards that no call may change.
TEST_F(BoundedCopy, EqualsItsReferenceForAllBuffersWithinFiveBytes)
{
    constexpr size_t begin = 8;
    constexpr size_t end = begin + 5;
    for (unsigned nuls = 0; nuls < 1u << 5; ++nuls) {
        std::string memory = "########abcde########";
        for (size_t i = 0; i < 5; ++i)
            memory[begin + i] = nuls >> i & 1 ? '\0' : memory[begin + i];
        for (call_t call{begin, 0, begin, 0}; call.dest < end; ++call.dest)
            for (call.destsz = 0; call.destsz <= end - call.dest; ++call.destsz)
                for (call.src = begin; call.src < end; ++call.src)
                    for (call.count = 0; call.count <= 6; ++call.count)
                        for (const function_t& function : functions)
                            ASSERT_NO_FATAL_FAILURE(expect_like_reference(function, memory, call));
    }
}

TEST_F(BoundedCopy, ChecksForNullFirstAndTakesSizesUpToItsLimit)
{
    for (const function_t& function : functions) {
        SCOPED_TRACE(function.name);
        const bool text = function.kind & of_text;
        const size_t limit = text ? max_string_size : max_memory_size;
        std::string from(limit, 'x');
        const std::string before = '\0' + std::string(limit, '#');
        std::string to = before;
        expect_call(function, nullptr, 0, from.data(), 0, null_pointer);
        expect_call(function, to.data(), limit + 1, nullptr, 0, null_pointer);
        expect_call(function, to.data(), limit + 1, from.data(), 1, over_limit);
        expect_call(function, to.data(), limit + 1, from.data(), 0, text ? over_limit : bad_size);
        if (text)
            expect_call(function, to.data(), limit, from.data(), limit, no_space);
        EXPECT_TRUE(to == before);
        from.back() = '\0';
        expect_call(function, to.data(), limit, from.data(), limit, success);
        EXPECT_TRUE(to == from + '#'); // without printing a hundred megabytes
    }
}

} // namespace
