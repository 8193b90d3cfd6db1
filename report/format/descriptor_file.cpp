#include "report/format/descriptor_file.h"

#include "report/format/file_content.h"
#include "report/format/text_cursor.h"

namespace report {
namespace {

void append(DescriptorBytes& bytes, TextCursor& text)
{
    if (bytes.size() == kMaxDescriptorSize && text.atHexDigit())
        text.failWith("expected at most 65535 bytes, found more");
    bytes.push_back(text.readHexPair());
}

// One byte after 0x, otherwise all pairs up to a character that is not a digit.
void readPairs(DescriptorBytes& bytes, TextCursor& text)
{
    const bool prefixed = text.skip("0x") || text.skip("0X");
    do
        append(bytes, text);
    while (!prefixed && text.atHexDigit());
    if (text.atHexDigit())
        text.fail("the end of the byte after its two digits");
}

DescriptorBytes readHexText(TextCursor text)
{
    DescriptorBytes bytes;
    bool commaAllowed = false; // after a byte, unless a comma follows that byte already
    for (;;) {
        text.skipComments(TextCursor::Comments::kAll);
        if (text.atEnd())
            break;
        if (commaAllowed && text.skip(",")) {
            commaAllowed = false;
        } else {
            readPairs(bytes, text);
            commaAllowed = true;
        }
    }
    if (bytes.empty())
        text.failWith("expected a descriptor, found no bytes");
    return bytes;
}

} // namespace

DescriptorResult parseDescriptor(std::string_view text, const std::string& name)
{
    try {
        return readHexText(TextCursor(text, name));
    } catch (const DescriptorError& error) {
        return error;
    }
}

DescriptorResult readDescriptorFile(const std::filesystem::path& file)
{
    try {
        return parseDescriptor(readFile(file, kMaxFileSize), file.string());
    } catch (const DescriptorError& error) {
        return error;
    }
}

} // namespace report
