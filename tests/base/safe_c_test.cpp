#include "base/src/safe_c/safe_c.h"
#include "tests/base/log_fixture.h"

#include <cstdarg>
#include <tuple>
#include <unistd.h>

namespace {

using namespace rkb;
using namespace rkb::safe_c;

// Memory as a text in which '.' stands for a NUL, '#' for bytes that no call may change and '-' for
// bytes that a call might write. Comparing all of it shows every wrong write.
std::string memory(std::string picture)
{
    for (char& c : picture)
        c = c == '.' ? '\0' : c;
    return picture;
}

// A function that takes a va_list, as one that takes the arguments themselves.
template <int (*printer)(char*, size_t, const char*, va_list)>
int print(char* dst, size_t size, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = printer(dst, size, format, args);
    va_end(args);
    return result;
}

int count = 0;
int kept = 77;
size_t length = 77;
// Without the compiler's checks, which do not accept wrong formats.
constexpr int (*sprintf_unchecked)(char*, size_t, const char*, ...) = sprintf_s;
constexpr int (*sscanf_unchecked)(const char*, const char*, ...) = sscanf_s;
constexpr size_t huge = max_memory_size + 1;
constexpr size_t too_long = max_string_size + 1;

struct case_t {
    long result;
    std::string message;   // of the report, none without
    long (*call)(char* d); // d: "abc" in a buffer of 8 bytes
    const char* after = "abc.----";
};

#define CALL(call) []([[maybe_unused]] char* d) { return static_cast<long>(call); }

const case_t cases[] = {
    {400, "memcmp_s invalid parameters differ", CALL(memcmp_s(d, 0, d, 1, nullptr))},
    {402, "memcmp_s invalid parameters", CALL(memcmp_s(d, 1, d, huge, &kept))},
    {403, "memcmp_s invalid parameters", CALL(memcmp_s(d, huge, d, 1, &kept))},
    {400, "memset_s invalid parameters, (void *)dest = 0x0000000000000000, destsz = 8, count = 9]",
        CALL(memset_s(nullptr, 8, 0, 9))},
    {0, "", CALL(memset_s(d, 6, 0x100 + 'x', 5)), "xxxxx---"},
    {406, "memset_s invalid parameters", CALL(memset_s(d, 7, 0, 8))},
    {400, "memcpy_s invalid parameters", CALL(memcpy_s(d, 0, nullptr, 1))},
    {402, "memcpy_s invalid parameters", CALL(memcpy_s(d, huge, d, 0))},
    {403, "memcpy_s invalid parameters", CALL(memcpy_s(d, huge, d, 1))},
    {406, "memcpy_s invalid parameters", CALL(memcpy_s(d, 2, d, 3))},
    {404, "memcpy_s invalid parameters overlap is not allow", CALL(memcpy_s(d, 8, d + 7, 1))},
    {404, "memcpy_s invalid parameters overlap is not allow", CALL(memcpy_s(d + 1, 4, d, 2))},
    {0, "", CALL(memcpy_s(d + 4, 4, d, 4)), "abc.abc."},
    {400, "memmove_s invalid parameters", CALL(memmove_s(nullptr, 0, d, 1))},
    {0, "", CALL(memmove_s(d + 1, 4, d, 4)), "aabc.---"},
    {400, "strcpy_s invalid parameters", CALL(strcpy_s(d, 0, nullptr))},
    {402, "strcpy_s invalid parameters", CALL(strcpy_s(d, 0, "x"))},
    {403, "strcpy_s invalid parameters", CALL(strcpy_s(d, too_long, "x"))},
    {406, "strcpy_s, space is not enough", CALL(strcpy_s(d + 3, 3, d))},
    {404, "strcpy_s, overlap is not allow", CALL(strcpy_s(d + 2, 3, d))},
    {404, "strcpy_s, overlap is not allow", CALL(strcpy_s(d, 8, d + 1))},
    {0, "", CALL(strcpy_s(d + 4, 4, d)), "abc.abc."},
    {403, "strncpy_s invalid parameters", CALL(strncpy_s(d, 0, d, too_long))},
    {406, "strncpy_s, space is not enough", CALL(strncpy_s(d, 3, d, 3))},
    {404, "strncpy_s invalid parameters overlap is not allow", CALL(strncpy_s(d, 4, d + 1, 2))},
    {0, "", CALL(strncpy_s(d + 3, 4, d, 3)), "abcabc.-"},
    {400, "strcat_s invalid parameters", CALL(strcat_s(d, too_long, nullptr))},
    {403, "strcat_s invalid parameters", CALL(strcat_s(d, too_long, d))},
    {406, "strcat_s invalid parameters", CALL(strcat_s(d, 5, "xy"))},
    {404, "strcat_s, overlap is not allow", CALL(strcat_s(d, 8, d + 2))},
    {0, "", CALL(strcat_s(d, 8, "vwxy")), "abcvwxy."},
    {0, "strnlen_s string size limitation out of scope", CALL(strnlen_s(d, too_long))},
    {0, "strnlen_s string size limitation out of scope", CALL(strnlen_s(nullptr, 8))},
    {3, "strnlen_s string size limitation out of scope", CALL(strnlen_s(d, 3))},
    {2, "", CALL(wcsnlen_s(L"abc", 2))},
    {0, "strtok_s invalid parameters", CALL(strtok_s(d, too_long, ",", &d) != nullptr)},
    {0, "strtok_s invalid parameters *ptr should",
        CALL(strtok_s(d = nullptr, 8, ",", &d) != nullptr)},
    {-406, "sprintf_s invalid parameters", CALL(sprintf_s(d, 3, "xyz")), "xy..----"},
    {-400, "sprintf_s invalid parameters", CALL(sprintf_unchecked(d, 0, nullptr))},
    {-402, "sprintf_s invalid parameters", CALL(sprintf_s(d, 0, "x"))},
    {-403, "sprintf_s invalid parameters", CALL(sprintf_s(d, too_long, "x"))},
    {-406, "snprintf_s invalid parameters", CALL(snprintf_s(d, 3, "xyz")), "xy..----"},
    {2, "", CALL(print<vsprintf_s>(d, 8, "%%n%n", &count)), "%n..----"},
    {-400, "vsprintf_s invalid parameters", CALL(print<vsprintf_s>(nullptr, 8, "%n"))},
    {-22, "vsprintf_s: illegal %n", CALL(print<vsprintf_s>(d, 0, "%n", &kept))},
    {-22, "vsprintf_s: illegal %n", CALL(print<vsprintf_s>(d, 8, "x%n%%n", &kept))},
    {-406, "vsprintf_s have not more", CALL(print<vsprintf_s>(d, 3, "xyz")), "xy..----"},
    {3, "", CALL(print<vsnprintf_s>(d, 3, "%s", "xyz")), "xy..----"},
    {-400, "vsnprintf_s: invalid parameters", CALL(print<vsnprintf_s>(d, 0, nullptr))},
    {-400, "vsnprintf_s: _dstbuf_size cannot be zero ", CALL(print<vsnprintf_s>(d, 0, "%n"))},
    {-403, "vsnprintf_s: _dstbuf_size exceeds max", CALL(print<vsnprintf_s>(d, too_long, "%n"))},
    {-22, "vsnprintf_s: illegal %n", CALL(print<vsnprintf_s>(d, 8, "x%n", &kept))},
    {2, "", CALL(sscanf_s("12 xy", "%d %7s", &count, d)), "xy..----"},
    {-1, "sscanf_s invalid parameters", CALL(sscanf_unchecked(d, nullptr))},
    {5, "", CALL(getenv_s(&length, d, 6, "KELPROBE_FIVE") ? 99 : length), "fiver.--"},
    {0, "", CALL(getenv_s(&length, d, 2, "KELPROBE_EMPTY") ? 99 : length), ".bc.----"},
    {406, "getenv_s invalid parameters", CALL(getenv_s(&length, d, 5, "KELPROBE_FIVE"))},
    {402, "getenv_s invalid parameters", CALL(getenv_s(&length, d, 1, "HOME"))},
    {400, "getenv_s invalid", CALL((environ = nullptr, getenv_s(&length, d, 8, "HOME")))},
    {409, "getenv_s invalid parameters", CALL(getenv_s(&length, d, 8, "KELPROBE_NEVER_SET"))},
};

TEST_F(LogTest, BoundedFunctionsWriteOnlyWhatTheyShouldAndReportRejectionsOnceAtFatal)
{
    setenv("KELPROBE_FIVE", "fiver", 1);
    setenv("KELPROBE_EMPTY", "", 1);
    Recorder log;
    record_library(log);
    char** const environment = environ;
    for (const auto& [result, message, call, after] : cases) {
        SCOPED_TRACE(testing::Message() << &message - &cases[0].message << message << after);
        std::string bytes = memory("####abc.----####");
        log.lines.clear();
        length = 77;
        EXPECT_EQ(call(&bytes[4]), result);
        environ = environment;
        EXPECT_EQ(bytes, memory(std::string("####") + after + "####"));
        EXPECT_TRUE(kept == 77 && (length == 77 || message.empty()));
        ASSERT_EQ(log.lines.size(), message.empty() ? 0u : 1u);
        const std::string line = log.lines.empty() ? "" : log.lines[0];
        EXPECT_NE(line.find(message.empty() ? "" : "\tFATAL\tassert: msg[" + message), line.npos)
            << line;
        EXPECT_EQ(line.find("] file[../src/safe_c], line = [") == line.npos, message.empty())
            << line;
    }
}

TEST(BoundedFunctions, TakeSizesUpToTheirLimits)
{
    const std::string text(max_string_size - 1, 'x');
    const std::string from(max_memory_size, 'x');
    std::string to = '\0' + std::string(max_memory_size, '#');
    EXPECT_EQ(strcat_s(to.data(), max_string_size, text.c_str()), success);
    EXPECT_EQ(strcpy_s(to.data(), max_string_size, text.c_str()), success);
    EXPECT_EQ(to.find('#'), max_string_size);
    EXPECT_EQ(memcpy_s(to.data(), max_memory_size, from.data(), max_memory_size), success);
    EXPECT_TRUE(to == from + '#'); // without printing a hundred megabytes
    int diff = 77;
    EXPECT_EQ(memcmp_s(&to[0], max_memory_size, &from[0], max_memory_size, &diff), success);
    EXPECT_EQ(diff, 0);
    to[600] = 'y';
    for (size_t i = 601; i-- > 0;) {
        to[i] = '\xFF'; // more than 'x': bytes are unsigned
        EXPECT_EQ(memcmp_s(from.data(), 601, to.data(), 601, &diff), success);
        ASSERT_EQ(diff, 'x' - 0xFF) << i;
        to[i] = 'z';
    }
}

TEST(StrtokS, SplitsAsThePlatformDoesWithinItsSize)
{
    const std::tuple<const char*, size_t, const char*, const char*> rows[]
        = {{",;ab,c;;d.##", 9, "ab|c|d|", ",;ab.c.;d.##"}, {",,,##", 3, "", ",,,##"},
            {"ab,cd##", 4, "ab|", "ab.cd##"}}; // no end of a token within four bytes
    for (const auto& [before, strmax, tokens, after] : rows) {
        std::string bytes = memory(before);
        std::string found;
        char* saved = bytes.data() + 1; // is ignored when there is a string
        for (char* begin = bytes.data(); const char* token = strtok_s(begin, strmax, ";,", &saved);
             begin = nullptr)
            found.append(token).append("|");
        EXPECT_EQ(found, tokens);
        EXPECT_EQ(bytes, memory(after));
    }
}

} // namespace
