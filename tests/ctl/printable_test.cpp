#include "tools/text/printable.h"
#include "tools/text/suggestion.h"
#include "tools/text/utf8.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_view_literals;

TEST(Printable, KeepsOnlyWhatCannotHarmATerminal)
{
    for (const auto& [text, expected] : {
             std::pair{"Jörg's \"Desk\" 話"sv, "Jörg's \"Desk\" 話"sv},
             {"a\033[2J\nb\t\x7f"sv, "a\\x1b[2J\\x0ab\\x09\\x7f"sv},
             {"\0"sv, "\\x00"sv},
             {"\xc2\x9b"sv, "\\xc2\\x9b"sv},                            // CSI
             {"\xe2\x80\xae"sv, "\\xe2\\x80\\xae"sv},                   // right to left
             {"\xff\xc3"sv, "\\xff\\xc3"sv},                            // not UTF-8
             {"\xc0\x80\xe0\x80\x8a"sv, "\\xc0\\x80\\xe0\\x80\\x8a"sv}, // too long
             {"\xed\xa0\x80\xf4\x90\x80\x80"sv, "\\xed\\xa0\\x80\\xf4\\x90\\x80\\x80"sv},
             {"\xef\xbf\xbe\xef\xbf\xbf"sv, "\\xef\\xbf\\xbe\\xef\\xbf\\xbf"sv}, // not in XML
             {"\xf0\x9f\x98\x80"sv, "\xf0\x9f\x98\x80"sv},
         })
        EXPECT_EQ(text::printable(text), expected);
}

TEST(Utf8, ReplacesInvalidBytes)
{
    for (const auto& [text, expected] :
        {std::pair{"J\xc3\xb6rg\x07"sv, "J\xc3\xb6rg\x07"sv}, {"\xff\xfe("sv, "\ufffd\ufffd("sv},
            {"a\xc3"sv, "a\ufffd"sv}, {"\xed\xa0\x80"sv, "\ufffd\ufffd\ufffd"sv}})
        EXPECT_EQ(text::validUtf8(text), expected);
}

TEST(Utf8, CountsTheColumnsOfATerminal)
{
    for (const auto& [text, columns] : {std::pair{"Jörg"sv, 4}, {"会议电话"sv, 8}, {"ﾃﾚﾋﾞ"sv, 4},
             {"Ｗ"sv, 2}, {"e\u0301"sv, 1}, {"한국"sv, 4}, {"\U0001f3a7"sv, 2}, {"\xff"sv, 1}})
        EXPECT_EQ(text::columns(text), columns) << text;
    EXPECT_EQ(text::firstColumns("会议e\u0301x", 3), "会");
    EXPECT_EQ(text::firstColumns("会议e\u0301x", 5), "会议e\u0301");
}

TEST(Suggestion, CountsASwapAsOneChange)
{
    const std::string_view names[] = {"list", "lamp", "describe"};
    for (const auto& [word, expected] : {std::pair{"lits"sv, "list"sv}, {"lmap"sv, "lamp"sv},
             {"descrbie"sv, "describe"sv}, {"lx"sv, ""sv}, {"ilts"sv, ""sv}})
        EXPECT_EQ(text::nearest(word, names), expected) << word;
}

} // namespace
