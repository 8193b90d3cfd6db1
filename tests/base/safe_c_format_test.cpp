#include "safe_c.h"

#include "safe_c_support.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using namespace rkb;
using namespace rkb::safe_c;

using vprinter_t = int (*)(char*, size_t, const char*, va_list);

// As a varargs function, to be asked with the same table as the others.
template <vprinter_t printer>
int print(char* dst, size_t size, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = printer(dst, size, format, args);
    va_end(args);
    return result;
}

struct row_t {
    int (*print)(char*, size_t, const char*, ...);
    size_t size;
    const char* text;
    int result;
    const char* after;
};

TEST(Formatting, ReturnsTheLengthOrWhatItsFunctionSaysOfACutText)
{
    const row_t rows[] = {
        {sprintf_s, 4, "abc", 3, "##abc.##"},
        {sprintf_s, 4, "abcd", -no_space, "##abc.##"},
        {sprintf_s, 1, "", 0, "##.---##"},
        {snprintf_s, 4, "abc", 3, "##abc.##"},
        {snprintf_s, 4, "abcd", -no_space, "##abc.##"},
        {print<vsprintf_s>, 4, "abc", 3, "##abc.##"},
        {print<vsprintf_s>, 4, "abcd", -no_space, "##abc.##"},
        {print<vsnprintf_s>, 4, "abc", 3, "##abc.##"},
        {print<vsnprintf_s>, 4, "abcd", 4, "##abc.##"},
    };
    for (const row_t& row : rows) {
        SCOPED_TRACE(testing::Message() << "row " << &row - rows);
        std::string bytes = "##----##";
        EXPECT_EQ(row.print(&bytes[2], row.size, "%s", row.text), row.result);
        EXPECT_EQ(bytes, memory(row.after));
    }
}

TEST(Formatting, LooksAtTheFirstPercentNOnly)
{
    char text[16];
    int count = 0;
    for (const auto call : {print<vsprintf_s>, print<vsnprintf_s>}) {
        EXPECT_EQ(call(text, sizeof text, "%%n"), 2);
        EXPECT_EQ(call(text, sizeof text, "%%n%n", &count), 2);
        EXPECT_EQ(count, 2);
        EXPECT_EQ(call(text, sizeof text, "x%n%%n", &count), -illegal_format);
    }
    EXPECT_EQ(sprintf_s(text, sizeof text, "abc%n", &count), 3); // not examined here at all
    EXPECT_EQ(count, 3);
}

TEST(SscanfS, AnswersAsThePlatform)
{
    int a = 0;
    int b = 0;
    EXPECT_EQ(sscanf_s("12 34", "%d %d", &a, &b), 2);
    EXPECT_EQ(a * 100 + b, 1234);
    EXPECT_EQ(sscanf_s("x", "%d", &a), 0);
    EXPECT_EQ(sscanf_s("", "%d", &a), -1);
}

TEST(GetenvS, CopiesAValueThatFitsWithItsNul)
{
    setenv("KELPROBE_TEST", "abcd", 1);
    size_t length = 77;
    std::string bytes = "##------##";
    EXPECT_EQ(getenv_s(&length, &bytes[2], 4, "KELPROBE_TEST"), no_space);
    EXPECT_EQ(bytes, "##------##");
    EXPECT_EQ(length, 77u);
    EXPECT_EQ(getenv_s(&length, &bytes[2], 5, "KELPROBE_TEST"), success);
    EXPECT_EQ(bytes, memory("##abcd.-##"));
    EXPECT_EQ(length, 4u);
    setenv("KELPROBE_TEST", "", 1);
    EXPECT_EQ(getenv_s(&length, &bytes[2], 2, "KELPROBE_TEST"), success);
    EXPECT_EQ(bytes, memory("##.bcd.-##"));
    EXPECT_EQ(length, 0u);
    unsetenv("KELPROBE_TEST");
}

} // namespace
