#include "report/format/usbhid_dump.h"

#include <algorithm>
#include <limits>

namespace report {
namespace {

constexpr uint64_t kMaxNumber = 255; // of a bus, device or interface

std::string readNumber(TextCursor& text, const std::string& what)
{
    const std::string number
        = std::to_string(text.readNumber(10, kMaxNumber, "the number of " + what));
    return std::string(number.size() < 3 ? 3 - number.size() : 0, '0') + number;
}

void readColon(TextCursor& text)
{
    if (!text.skip(":"))
        text.fail("':'");
}

void readTime(TextCursor& text)
{
    constexpr uint64_t maximum = std::numeric_limits<uint64_t>::max();
    text.skipBlanks();
    static_cast<void>(text.readNumber(10, maximum, "a time in seconds"));
    if (!text.skip("."))
        text.fail("a decimal point after the seconds");
    static_cast<void>(text.readNumber(10, maximum, "microseconds"));
}

// The label of the interface in a head line, and whether a descriptor follows.
struct Head {
    std::string label;
    bool isDescriptor = false;
};

Head readHead(TextCursor& text)
{
    Head head;
    head.label = "bus " + readNumber(text, "a bus");
    readColon(text);
    head.label += ", device " + readNumber(text, "a device");
    readColon(text);
    head.label += ", interface " + readNumber(text, "an interface");
    readColon(text);
    head.isDescriptor = text.skip("DESCRIPTOR");
    if (!head.isDescriptor && !text.skip("STREAM"))
        text.fail("DESCRIPTOR or STREAM");
    readTime(text);
    text.readLineEnd();
    return head;
}

void readBytes(DescriptorBytes& bytes, TextCursor& text)
{
    text.skipBlanks();
    while (!text.atLineEnd()) {
        if (bytes.size() == kMaxDescriptorSize)
            text.failWith("expected at most 65535 bytes, found more");
        bytes.push_back(text.readHexPair());
        if (text.atHexDigit())
            text.fail("a blank after the byte's two digits");
        text.skipBlanks();
    }
    text.readLineEnd();
}

// The lines up to a blank line, a head line or the end.
DescriptorBytes readBlock(TextCursor& text)
{
    DescriptorBytes bytes;
    for (;;) {
        text.skipBlanks();
        if (text.atLineEnd() || isUsbhidDump(text.restOfLine()))
            return bytes;
        readBytes(bytes, text);
    }
}

} // namespace

bool isUsbhidDump(std::string_view line)
{
    const size_t digits = line.find_first_not_of("0123456789");
    return digits != line.npos && digits > 0 && line[digits] == ':';
}

std::vector<FoundDescriptor> readUsbhidDump(TextCursor text)
{
    std::vector<FoundDescriptor> found;
    for (;;) {
        text.skipBlanksAndLineEnds();
        if (text.atEnd())
            break;
        Head head = readHead(text);
        DescriptorBytes bytes = readBlock(text);
        if (!head.isDescriptor)
            continue;
        if (bytes.empty())
            text.fail("the bytes of the descriptor");
        found.push_back({std::move(bytes), std::move(head.label)});
    }
    if (found.empty())
        text.fail("a DESCRIPTOR block");
    return found;
}

} // namespace report
