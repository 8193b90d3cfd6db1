// The bounded functions except the copies.
#include "base/src/safe_c/safe_c.h"
#include "tests/base/log_fixture.h"

#include <cstdarg>
#include <tuple>
#include <unistd.h>
#include <vector>

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

// Without the compiler's checks, which do not accept wrong formats.
constexpr int (*sprintf_unchecked)(char*, size_t, const char*, ...) = sprintf_s;
constexpr int (*sscanf_unchecked)(const char*, const char*, ...) = sscanf_s;

int getenv_without_environment(char* value)
{
    char** const kept = environ;
    environ = nullptr;
    size_t length = 0;
    const int result = getenv_s(&length, value, 8, "HOME");
    environ = kept;
    return result;
}

int count = 0;
int kept = 77;
size_t length = 77;
constexpr size_t too_much_memory = max_memory_size + 1;
constexpr size_t too_long = max_string_size + 1;

struct case_t {
    long result;
    std::string message;   // of the report, none without
    long (*call)(char* d); // d: "abc" in a buffer of 8 bytes
    const char* after = "abc.----";
};

#define CALL(call) []([[maybe_unused]] char* d) { return static_cast<long>(call); }

const case_t cases[] = {
    {400, "memcmp_s invalid parameters differ", CALL(memcmp_s(nullptr, 0, d, 1, &kept))},
    {400, "memcmp_s invalid parameters differ", CALL(memcmp_s(d, 0, d, 1, nullptr))},
    {402, "memcmp_s invalid parameters", CALL(memcmp_s(d, 0, d, 0, &kept))},
    {402, "memcmp_s invalid parameters", CALL(memcmp_s(d, 1, d, too_much_memory, &kept))},
    {403, "memcmp_s invalid parameters", CALL(memcmp_s(d, too_much_memory, d, 1, &kept))},
    {400, "memset_s invalid parameters, (void *)dest = 0x0000000000000000, destsz = 8",
        CALL(memset_s(nullptr, 8, 0, 9))},
    {0, "", CALL(memset_s(d, 6, 0x100 + 'x', 5)), "xxxxx---"},
    {406, "memset_s invalid parameters", CALL(memset_s(d, 7, 0, 8))},
    {403, "strncpy_s invalid parameters", CALL(strncpy_s(d, 0, d, too_long))},
    {0, "strnlen_s string size limitation out of scope", CALL(strnlen_s(d, too_long))},
    {0, "strnlen_s string size limitation out of scope", CALL(strnlen_s(nullptr, 8))},
    {3, "strnlen_s string size limitation out of scope", CALL(strnlen_s(d, 3))},
    {0, "wcsnlen_s string size limitation out of scope", CALL(wcsnlen_s(L"abc", too_long))},
    {0, "wcsnlen_s string size limitation out of scope", CALL(wcsnlen_s(nullptr, 8))},
    {3, "", CALL(strnlen_s(d, 4))},
    {3, "", CALL(strnlen_s(d, max_string_size))},
    {3, "", CALL(wcsnlen_s(L"a\x20AC\x1F600", 9))},
    {2, "", CALL(wcsnlen_s(L"abc", 2))},
    {0, "strtok_s invalid parameters", CALL(strtok_s(d, too_long, ",", &d) != nullptr)},
    {0, "strtok_s invalid parameters", CALL(strtok_s(d, 8, nullptr, &d) != nullptr)},
    {0, "strtok_s invalid parameters", CALL(strtok_s(d, 8, "b", nullptr) != nullptr)},
    {0, "strtok_s invalid parameters", CALL(strtok_s(d, 3, ",", &d) != nullptr)},
    {0, "strtok_s invalid parameters *ptr should be not null if str is null",
        CALL(strtok_s(d = nullptr, 8, ",", &d) != nullptr)},
    {3, "", CALL(sprintf_s(d, 4, "%s", "xyz")), "xyz.----"},
    {3, "", CALL(sprintf_unchecked(d, 8, "xyz%n", &count)), "xyz.----"}, // not examined at all
    {-406, "sprintf_s invalid parameters", CALL(sprintf_s(d, 3, "xyz")), "xy..----"},
    {-400, "sprintf_s invalid parameters", CALL(sprintf_s(nullptr, 0, "x"))},
    {-400, "sprintf_s invalid parameters", CALL(sprintf_unchecked(d, 8, nullptr))},
    {-403, "sprintf_s invalid parameters", CALL(sprintf_s(d, too_long, "x"))},
    {-402, "sprintf_s invalid parameters", CALL(sprintf_s(d, 0, "x"))},
    {3, "", CALL(snprintf_s(d, 4, "%s", "xyz")), "xyz.----"},
    {-406, "snprintf_s invalid parameters", CALL(snprintf_s(d, 3, "xyz")), "xy..----"},
    {-400, "snprintf_s invalid parameters", CALL(snprintf_s(nullptr, 0, "x"))},
    {-402, "snprintf_s invalid parameters", CALL(snprintf_s(d, 0, "x"))},
    {3, "", CALL(print<vsprintf_s>(d, 4, "%s", "xyz")), "xyz.----"},
    {2, "", CALL(print<vsprintf_s>(d, 8, "%%n%n", &count)), "%n..----"},
    {-400, "vsprintf_s invalid parameters", CALL(print<vsprintf_s>(nullptr, 8, "%n"))},
    {-400, "vsprintf_s invalid parameters", CALL(print<vsprintf_s>(d, 8, nullptr))},
    {-22, "vsprintf_s: illegal %n", CALL(print<vsprintf_s>(d, 0, "%n", &kept))},
    {-22, "vsprintf_s: illegal %n", CALL(print<vsprintf_s>(d, 8, "x%n%%n", &kept))},
    {-406, "vsprintf_s have not more expace for the formatted string",
        CALL(print<vsprintf_s>(d, 3, "xyz")), "xy..----"},
    {-406, "vsprintf_s have not more expace for the formatted string",
        CALL(print<vsprintf_s>(d, 0, ""))},
    {3, "", CALL(print<vsnprintf_s>(d, 4, "%s", "xyz")), "xyz.----"},
    {3, "", CALL(print<vsnprintf_s>(d, 3, "%s", "xyz")), "xy..----"},
    {2, "", CALL(print<vsnprintf_s>(d, 8, "%%n%n", &count)), "%n..----"},
    {-400, "vsnprintf_s: invalid parameters", CALL(print<vsnprintf_s>(nullptr, 0, "%n"))},
    {-400, "vsnprintf_s: invalid parameters", CALL(print<vsnprintf_s>(d, 0, nullptr))},
    {-400, "vsnprintf_s: _dstbuf_size cannot be zero ", CALL(print<vsnprintf_s>(d, 0, "%n"))},
    {-403, "vsnprintf_s: _dstbuf_size exceeds max", CALL(print<vsnprintf_s>(d, too_long, "%n"))},
    {-22, "vsnprintf_s: illegal %n", CALL(print<vsnprintf_s>(d, 8, "x%n", &kept))},
    {1, "", CALL(sscanf_s("12 x", "%d %d", &count, &kept))},
    {2, "", CALL(sscanf_s("12 xy", "%d %7s", &count, d)), "xy..----"},
    {-1, "sscanf_s invalid parameters", CALL(sscanf_s(nullptr, "%s", d))},
    {-1, "sscanf_s invalid parameters", CALL(sscanf_unchecked(d, nullptr))},
    {5, "", CALL(getenv_s(&length, d, 6, "KELPROBE_FIVE") ? 99 : length), "fiver.--"},
    {0, "", CALL(getenv_s(&length, d, 2, "KELPROBE_EMPTY") ? 99 : length), ".bc.----"},
    {406, "getenv_s invalid parameters", CALL(getenv_s(&length, d, 5, "KELPROBE_FIVE"))},
    {402, "getenv_s invalid parameters", CALL(getenv_s(nullptr, d, 8, "HOME"))},
    {402, "getenv_s invalid parameters", CALL(getenv_s(&length, d, 1, "HOME"))},
    {400, "getenv_s invalid parameters", CALL(getenv_without_environment(d))},
    {409, "getenv_s invalid parameters", CALL(getenv_s(&length, d, 8, "KELPROBE_NEVER_SET"))},
};

TEST_F(LogTest, BoundedFunctionsWriteOnlyWhatTheyShouldAndReportRejectionsOnceAtFatal)
{
    setenv("KELPROBE_FIVE", "fiver", 1);
    setenv("KELPROBE_EMPTY", "", 1);
    Recorder log;
    record_library(log);
    for (const auto& [result, message, call, after] : cases) {
        SCOPED_TRACE(testing::Message() << message << " " << after << " " << result);
        std::string bytes = memory("####abc.----####");
        log.lines.clear();
        length = 77;
        EXPECT_EQ(call(&bytes[4]), result);
        EXPECT_EQ(bytes, memory(std::string("####") + after + "####"));
        EXPECT_TRUE(kept == 77 && (length == 77 || message.empty()));
        ASSERT_EQ(log.lines.size(), message.empty() ? 0u : 1u);
        if (message.empty())
            continue;
        const std::string& line = log.lines[0];
        EXPECT_NE(line.find("\tFATAL\tassert: msg[" + message + ", "), line.npos) << line;
        EXPECT_NE(line.find("] file[../src/safe_c], line = ["), line.npos) << line;
    }
}

TEST(MemcmpS, ReturnsTheDifferenceOfTheFirstUnequalBytes)
{
    int diff = 77;
    for (const size_t size : {1u, 255u, 256u, 257u, 600u, 1024u}) {
        const std::string a(size, 'x');
        for (size_t i = 0; i < size; ++i) {
            std::string b = a;
            b.back() = 'y';
            b[i] = '\xFF'; // more than 'x': bytes are unsigned
            EXPECT_EQ(memcmp_s(a.data(), size, b.data(), size, &diff), success);
            ASSERT_EQ(diff, 'x' - 0xFF) << i << " of " << size;
        }
    }
    const std::vector<char> longest(max_memory_size);
    EXPECT_EQ(memcmp_s(&longest[0], longest.size(), &longest[0], longest.size(), &diff), success);
    EXPECT_EQ(diff, 0);
}

TEST(StrtokS, SplitsAsThePlatformDoesWithinItsSize)
{
    using tokens_t = std::vector<std::string>;
    const std::tuple<const char*, size_t, tokens_t, const char*> rows[] = {
        {",;ab,c;;d.##", 9, {"ab", "c", "d"}, ",;ab.c.;d.##"},
        {"ab,cd##", 4, {"ab"}, "ab.cd##"}, // no end of a token within four bytes
        {",,,##", 3, {}, ",,,##"},
        {"ab.##", 0, {}, "ab.##"},
    };
    for (const auto& [before, strmax, tokens, after] : rows) {
        std::string bytes = memory(before);
        tokens_t found;
        char* saved = bytes.data() + 1; // is ignored when there is a string
        for (char* token = strtok_s(bytes.data(), strmax, ";,", &saved); token;
             token = strtok_s(nullptr, strmax, ";,", &saved))
            found.emplace_back(token);
        EXPECT_EQ(found, tokens) << before;
        EXPECT_EQ(bytes, memory(after)) << before;
        EXPECT_EQ(strtok_s(nullptr, strmax, ";,", &saved), nullptr) << before;
    }
}

} // namespace
