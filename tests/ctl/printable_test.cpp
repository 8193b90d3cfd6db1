#include "tools/text/printable.h"

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
             {"\xf0\x9f\x98\x80"sv, "\xf0\x9f\x98\x80"sv},
         })
        EXPECT_EQ(text::printable(text), expected);
}

} // namespace
