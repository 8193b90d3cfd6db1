#include "report/format/text_cursor.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>
#include <cstdio>
#include <system_error>

namespace report {
namespace {

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf"; // of UTF-8
constexpr std::string_view kBlanks = " \t\v\f\r";
constexpr std::string_view kBlanksAndLineEnds = " \t\v\f\r\n";

// The value of a hexadecimal digit; -1 for any other character.
int digitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::string_view withoutByteOrderMark(std::string_view text)
{
    return text.substr(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
}

} // namespace

bool isUtf16(std::string_view text)
{
    return text.starts_with("\xff\xfe") || text.starts_with("\xfe\xff");
}

TextCursor::TextCursor(std::string_view text, const std::string& name)
    : text_(withoutByteOrderMark(text))
    , name_(name)
{
    if (isUtf16(text))
        throw DescriptorError{name + ": a text in UTF-16; save it as UTF-8"};
}

bool TextCursor::atHexDigit() const
{
    return !atEnd() && digitValue(text_[at_]) >= 0;
}

std::string_view TextCursor::restOfLine() const
{
    return rest().substr(0, rest().find('\n'));
}

bool TextCursor::skip(std::string_view prefix)
{
    const bool found = rest().starts_with(prefix);
    if (found)
        at_ += prefix.size();
    return found;
}

void TextCursor::skipBlanks()
{
    at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size());
}

void TextCursor::skipBlanksAndLineEnds()
{
    at_ = std::min(text_.find_first_not_of(kBlanksAndLineEnds, at_), text_.size());
}

void TextCursor::skipComments(Comments kind)
{
    for (;;) {
        skipBlanksAndLineEnds();
        if (rest().starts_with("//") || (kind == Comments::kAll && rest().starts_with('#')))
            at_ += restOfLine().size();
        else if (!rest().starts_with("/*"))
            return;
        else if (const size_t end = text_.find("*/", at_ + 2); end != text_.npos)
            at_ = end + 2;
        else
            failWith("expected */ after this /*, found the end of the text");
    }
}

uint8_t TextCursor::readHexPair(const char* expected)
{
    if (!atHexDigit())
        fail(expected);
    const int high = digitValue(text_[at_++]);
    if (!atHexDigit())
        fail("a second hexadecimal digit");
    return static_cast<uint8_t>(high << 4 | digitValue(text_[at_++]));
}

uint64_t TextCursor::readNumber(int base, uint64_t maximum, const std::string& expected)
{
    assert(base == 10 || base == 16);
    const char* const begin = text_.data() + at_;
    uint64_t value = 0;
    const auto result = std::from_chars(begin, text_.data() + text_.size(), value, base);
    if (result.ptr == begin)
        fail(expected);
    if (result.ec != std::errc() || value > maximum)
        failWith("expected " + expected + ", found a greater number");
    at_ += static_cast<size_t>(result.ptr - begin);
    return value;
}

void TextCursor::readLineEnd()
{
    skipBlanks();
    if (!atLineEnd())
        fail("the end of the line");
    skip("\n");
}

void TextCursor::fail(const std::string& expected) const
{
    failWith("expected " + expected + ", found " + current());
}

void TextCursor::failWith(const std::string& what) const
{
    const std::string_view before = text_.substr(0, at_);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const size_t lineBegin = before.rfind('\n') + 1; // npos + 1 is 0
    throw DescriptorError{name_ + ':' + std::to_string(line) + ':'
        + std::to_string(at_ - lineBegin + 1) + ": " + what};
}

std::string TextCursor::current() const
{
    if (atEnd())
        return "the end of the text";
    const char c = text_[at_];
    if (c == '\n' || c == '\r')
        return "the end of the line";
    if (kBlanks.find(c) != kBlanks.npos)
        return "a blank";
    if (c > ' ' && c < '\x7f')
        return std::string("'") + c + "'";
    std::array<char, 16> code{};
    std::snprintf(code.data(), code.size(), "byte 0x%02x", unsigned{static_cast<uint8_t>(c)});
    return code.data();
}

} // namespace report
