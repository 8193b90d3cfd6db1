// Every way in which a bounded function rejects a call: its code, its report, and that nothing was
// written.
#include "safe_c.h"

#include "safe_c_support.h"

#include <gtest/gtest.h>

#include <functional>
#include <unistd.h>
#include <utility>

namespace {

using namespace rkb;
using namespace rkb::safe_c;

// Without the compiler's checks, which would not let a test be wrong on purpose.
constexpr int (*sprintf_unchecked)(char*, size_t, const char*, ...) = sprintf_s;
constexpr int (*sscanf_unchecked)(const char*, const char*, ...) = sscanf_s;
using vprinter_t = int (*)(char*, size_t, const char*, va_list);

int print(vprinter_t printer, char* dst, size_t size, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = printer(dst, size, format, args);
    va_end(args);
    return result;
}

int getenv_without_environment(char* value)
{
    char** const kept = environ;
    environ = nullptr;
    size_t length = 0;
    const int result = getenv_s(&length, value, 8, "HOME");
    environ = kept;
    return result;
}

using call_t = std::function<long(char* d)>; // d: "abc" in a buffer of 8 bytes

struct rejection_t {
    const char* message;
    std::vector<std::pair<int, call_t>> calls; // with their results
};

int diff = 77;
size_t length = 77;
constexpr size_t too_much_memory = max_memory_size + 1;
constexpr size_t too_long = max_string_size + 1;

const rejection_t rejections[] = {
    {"memcmp_s invalid parameters differ",
        {{400, [](char* d) { return memcmp_s(nullptr, 0, d, 1, &diff); }},
            {400, [](char* d) { return memcmp_s(d, 0, d, 1, nullptr); }}}},
    {"memcmp_s invalid parameters",
        {{402, [](char* d) { return memcmp_s(d, 0, d, 0, &diff); }},
            {402, [](char* d) { return memcmp_s(d, 1, d, too_much_memory, &diff); }},
            {403, [](char* d) { return memcmp_s(d, 104'857'601, d, 1, &diff); }}}},
    {"memcpy_s invalid parameters",
        {{400, [](char* d) { return memcpy_s(nullptr, 0, d, 1); }},
            {400, [](char* d) { return memcpy_s(d, 0, nullptr, 1); }},
            {402, [](char* d) { return memcpy_s(d, too_much_memory, "x", 0); }},
            {403, [](char* d) { return memcpy_s(d, 104'857'601, "x", 104'857'602); }},
            {406, [](char* d) { return memcpy_s(d, 8, d, 9); }}}},
    {"memcpy_s invalid parameters overlap is not allow",
        {{404, [](char* d) { return memcpy_s(d, 8, d, 1); }},
            {404, [](char* d) { return memcpy_s(d, 8, d + 7, 1); }}}}, // all of the destination
    {"memmove_s invalid parameters",
        {{400, [](char* d) { return memmove_s(d, 0, nullptr, 1); }},
            {406, [](char* d) { return memmove_s(d, 1, "xy", 2); }}}},
    {"memset_s invalid parameters",
        {{400, [](char*) { return memset_s(nullptr, 0, 0, 0); }},
            {406, [](char* d) { return memset_s(d, 7, 0, 8); }}}},
    {"strnlen_s string size limitation out of scope",
        {{0, [](char* d) { return strnlen_s(d, 65'537); }},
            {0, [](char*) { return strnlen_s(nullptr, 8); }},
            {3, [](char* d) { return strnlen_s(d, 3); }}}},
    {"wcsnlen_s string size limitation out of scope",
        {{0, [](char*) { return wcsnlen_s(L"abc", 65'537); }},
            {0, [](char*) { return wcsnlen_s(nullptr, 8); }}}},
    {"strcpy_s invalid parameters",
        {{400, [](char*) { return strcpy_s(nullptr, 0, "x"); }},
            {400, [](char* d) { return strcpy_s(d, 0, nullptr); }},
            {402, [](char* d) { return strcpy_s(d, 0, "x"); }},
            {403, [](char* d) { return strcpy_s(d, too_long, d); }}}},
    {"strcpy_s, overlap is not allow", {{404, [](char* d) { return strcpy_s(d, 3, d); }}}},
    {"strcpy_s, space is not enough", {{406, [](char* d) { return strcpy_s(d, 1, "x"); }}}},
    {"strncpy_s invalid parameters",
        {{400, [](char*) { return strncpy_s(nullptr, too_long, "x", 0); }},
            {403, [](char* d) { return strncpy_s(d, too_long, "x", 0); }},
            {403, [](char* d) { return strncpy_s(d, 0, "x", too_long); }},
            {402, [](char* d) { return strncpy_s(d, 8, "x", 0); }}}},
    {"strncpy_s, space is not enough", {{406, [](char* d) { return strncpy_s(d, 3, d, 8); }}}},
    {"strncpy_s invalid parameters overlap is not allow",
        {{404, [](char* d) { return strncpy_s(d, 8, d, 8); }}}},
    {"strcat_s invalid parameters",
        {{400, [](char*) { return strcat_s(nullptr, too_long, "x"); }},
            {400, [](char* d) { return strcat_s(d, 8, nullptr); }},
            {403, [](char* d) { return strcat_s(d, too_long, "x"); }},
            {406, [](char* d) { return strcat_s(d, 3, ""); }},
            {406, [](char* d) { return strcat_s(d, 6, d); }}}},
    {"strcat_s, overlap is not allow", {{404, [](char* d) { return strcat_s(d, 8, d); }}}},
    {"strtok_s invalid parameters",
        {{0, [](char* d) { return strtok_s(d, too_long, ",", &d) != nullptr; }},
            {0, [](char* d) { return strtok_s(d, 8, nullptr, &d) != nullptr; }},
            {0, [](char* d) { return strtok_s(d, 8, "b", nullptr) != nullptr; }},
            {0, [](char* d) { return strtok_s(d, 3, ",", &d) != nullptr; }}}},
    {"strtok_s invalid parameters *ptr should be not null if str is null",
        {{0, [](char* d) { return strtok_s(d = nullptr, 8, ",", &d) != nullptr; }}}},
    {"sprintf_s invalid parameters",
        {{-400, [](char*) { return sprintf_s(nullptr, 0, "x"); }},
            {-400, [](char* d) { return sprintf_unchecked(d, 8, nullptr); }},
            {-403, [](char* d) { return sprintf_s(d, too_long, "x"); }},
            {-402, [](char* d) { return sprintf_s(d, 0, "x"); }}}},
    {"snprintf_s invalid parameters",
        {{-400, [](char*) { return snprintf_s(nullptr, 0, "x"); }},
            {-402, [](char* d) { return snprintf_s(d, 0, "x"); }}}},
    {"vsprintf_s invalid parameters",
        {{-400, [](char*) { return print(vsprintf_s, nullptr, 8, "%n"); }},
            {-400, [](char* d) { return print(vsprintf_s, d, 8, nullptr); }}}},
    {"vsprintf_s: illegal %n",
        {{-22, [](char* d) { return print(vsprintf_s, d, 0, "%n", &diff); }},
            {-22, [](char* d) { return print(vsprintf_s, d, 8, "x%n", &diff); }}}},
    {"vsprintf_s have not more expace for the formatted string",
        {{-406, [](char* d) { return print(vsprintf_s, d, 0, ""); }}}},
    {"vsnprintf_s: invalid parameters",
        {{-400, [](char*) { return print(vsnprintf_s, nullptr, 0, "%n"); }},
            {-400, [](char* d) { return print(vsnprintf_s, d, 0, nullptr); }}}},
    {"vsnprintf_s: _dstbuf_size cannot be zero ",
        {{-400, [](char* d) { return print(vsnprintf_s, d, 0, "%n"); }}}},
    {"vsnprintf_s: _dstbuf_size exceeds max",
        {{-403, [](char* d) { return print(vsnprintf_s, d, too_long, "%n"); }}}},
    {"vsnprintf_s: illegal %n",
        {{-22, [](char* d) { return print(vsnprintf_s, d, 8, "x%n", &diff); }}}},
    {"sscanf_s invalid parameters",
        {{-1, [](char* d) { return sscanf_s(nullptr, "%s", d); }},
            {-1, [](char* d) { return sscanf_unchecked(d, nullptr); }}}},
    {"getenv_s invalid parameters",
        {{402, [](char* d) { return getenv_s(nullptr, d, 8, "HOME"); }},
            {402, [](char* d) { return getenv_s(&length, d, 1, "HOME"); }},
            {400, [](char* d) { return getenv_without_environment(d); }},
            {409, [](char* d) { return getenv_s(&length, d, 8, "KELPROBE_NEVER_SET"); }}}},
};

// Makes every call and hands its message on.
void reject_all(const std::function<void(const std::string& message)>& then)
{
    for (const auto& [message, calls] : rejections) {
        for (size_t i = 0; i < calls.size(); ++i) {
            SCOPED_TRACE(testing::Message() << message << ", call " << i);
            std::string bytes = memory("####abc.----####");
            EXPECT_EQ(calls[i].second(&bytes[4]), calls[i].first);
            EXPECT_EQ(bytes, memory("####abc.----####"));
            EXPECT_EQ(diff, 77);
            EXPECT_EQ(length, 77u);
            then(message);
        }
    }
}

TEST(SafeCRejection, KeepsItsCodeAndWritesNothingWithoutLogging)
{
    reject_all([](const std::string&) {});
}

TEST(SafeCRejection, IsReportedOnceAtFatal)
{
    log_capture_t log;
    reject_all([&](const std::string& message) {
        ASSERT_EQ(log.lines.size(), 1u);
        const std::string& line = log.lines[0];
        EXPECT_NE(line.find("\tFATAL\tassert: msg[" + message + ", (void *)"), line.npos) << line;
        EXPECT_NE(line.find("] file[../src/safe_c], line = ["), line.npos) << line;
        EXPECT_TRUE(line.ends_with("]\n")) << line;
        log.lines.clear();
    });
}

TEST(SafeCRejection, ReportsTheArgumentsInTheirOrder)
{
    log_capture_t log;
    memcpy_s(nullptr, 8, nullptr, 9);
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_NE(log.lines[0].find("msg[memcpy_s invalid parameters, (void *)dest = 0x0000000000000000"
                                ", destsz = 8, (void *)src = 0x0000000000000000, count = 9] file["),
        std::string::npos)
        << log.lines[0];
}

} // namespace
