#include "report/format/c_source.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <system_error>

namespace report {
namespace {

constexpr std::string_view kIdentifierCharacters
    = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

// The text up to a brace or semicolon, without comments: "static const uint8_t name[57] =".
// Otherwise nothing is left of the text.
std::string readDeclaration(TextCursor& text)
{
    std::string declaration;
    for (;;) {
        const size_t begin = text.position();
        text.skipComments(TextCursor::Comments::kAll);
        if (text.position() != begin)
            declaration += ' ';
        const bool empty = declaration.find_first_not_of(' ') == declaration.npos;
        if (text.atEnd() && !empty)
            text.fail("'{' or ';'");
        const char c = text.atEnd() ? ';' : text.rest().front();
        if (c == '{' || c == ';')
            return declaration;
        if (empty && !std::isalpha(static_cast<unsigned char>(c)) && c != '_' && c != '[')
            text.fail("a declaration or '{'");
        if (c == '}')
            text.fail("'{' or ';'");
        declaration += c;
        text.moveTo(text.position() + 1);
    }
}

// The identifier before the last brackets, or without brackets before the equals sign.
std::string arrayName(std::string_view declaration)
{
    const size_t bracket = declaration.rfind('[');
    const size_t end = bracket == declaration.npos ? declaration.find('=') : bracket;
    const std::string_view before = declaration.substr(0, end);
    const size_t last = before.find_last_of(kIdentifierCharacters);
    if (last == before.npos)
        return "";
    const size_t begin = before.find_last_not_of(kIdentifierCharacters, last) + 1;
    return std::string(before.substr(begin, last + 1 - begin));
}

// The number in the last brackets. None if they have no number, for example the name of a constant.
std::optional<size_t> declaredSize(std::string_view declaration)
{
    const size_t bracket = declaration.rfind('[');
    const size_t begin = declaration.find_first_not_of("[ ", bracket);
    if (bracket == declaration.npos || begin == declaration.npos)
        return std::nullopt;
    std::string_view number = declaration.substr(begin);
    const bool isHex = number.starts_with("0x") || number.starts_with("0X");
    if (isHex)
        number.remove_prefix(2);
    const char* const end = number.data() + number.size();
    size_t size = 0;
    const auto result = std::from_chars(number.data(), end, size, isHex ? 16 : 10);
    const std::string_view rest(result.ptr, static_cast<size_t>(end - result.ptr));
    const size_t next = rest.find_first_not_of(' ');
    if (result.ec != std::errc() || next == rest.npos || rest[next] != ']')
        return std::nullopt;
    return size;
}

uint8_t readElement(TextCursor& text)
{
    if (!text.skip("0x") && !text.skip("0X"))
        text.fail("0x and two hexadecimal digits");
    const uint8_t byte = text.readHexPair();
    if (text.atHexDigit())
        text.fail("the end of the byte after its two digits");
    return byte;
}

// From { to }.
DescriptorBytes readElements(TextCursor& text)
{
    constexpr auto comments = TextCursor::Comments::kC;
    DescriptorBytes bytes;
    text.skip("{");
    do {
        text.skipComments(comments);
        if (!bytes.empty() && text.rest().starts_with('}'))
            break; // after a comma
        if (bytes.size() == kMaxDescriptorSize)
            text.failWith("expected at most 65535 bytes, found more");
        bytes.push_back(readElement(text));
        text.skipComments(comments);
    } while (text.skip(","));
    if (!text.rest().starts_with('}'))
        text.fail("',' or '}'");
    return bytes;
}

FoundDescriptor readArray(TextCursor& text, const std::string& declaration)
{
    DescriptorBytes bytes = readElements(text);
    const auto size = declaredSize(declaration);
    if (size && *size != bytes.size())
        text.failWith("expected " + std::to_string(*size) + " bytes as declared, found "
            + std::to_string(bytes.size()));
    text.skip("}");
    return {std::move(bytes), arrayName(declaration)};
}

} // namespace

bool isCSource(TextCursor text)
{
    for (;;) {
        text.skipComments(TextCursor::Comments::kAll);
        if (text.atEnd())
            return false;
        if (text.rest().front() == '{')
            return true;
        text.moveTo(text.position() + 1);
    }
}

std::vector<FoundDescriptor> readCSource(TextCursor text)
{
    std::vector<FoundDescriptor> found;
    for (;;) {
        const std::string declaration = readDeclaration(text);
        if (text.rest().starts_with('{'))
            found.push_back(readArray(text, declaration));
        else if (!text.skip(";"))
            break;
    }
    if (found.empty())
        text.fail("'{'");
    return found;
}

} // namespace report
