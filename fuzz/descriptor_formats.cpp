// The readers of all descriptor formats. Input: the content of a file.
#include "fuzz/error_place.h"
#include "report/format/descriptor_source.h"
#include "report/format/recording.h"

namespace {

using Found = std::vector<report::FoundDescriptor>;

// What was found, or the error, its line without those before the content.
std::string Text(const report::DescriptorsResult& result, unsigned long linesBefore = 0)
{
    if (const auto* const error = std::get_if<report::DescriptorError>(&result)) {
        if (error->text.starts_with("f: "))
            return error->text;
        char* end = nullptr;
        const unsigned long line = std::strtoul(&error->text[2], &end, 10);
        return std::to_string(line - linesBefore) + end;
    }
    std::string text;
    for (const auto& [bytes, label, ids, name] : std::get<Found>(result)) {
        for (const std::string& part : {label, name, ids ? std::to_string(ids->vendor) : ""})
            text.append(part).append("|");
        text.append(report::toHex(bytes)).append("\n");
    }
    return text;
}

bool IsBinary(std::string_view content)
{
    content = content.substr(0, 16);
    return std::any_of(content.begin(), content.end(),
        [](unsigned char c) { return c < 0x09 || (c > 0x0d && c < 0x20); });
}

// It has a meaning only at the very beginning.
bool HasByteOrderMark(std::string_view content)
{
    return content.starts_with("\xff\xfe") || content.starts_with("\xfe\xff")
        || content.starts_with("\xef\xbb\xbf");
}

void RequireReads(const std::string& content, const report::DescriptorBytes& bytes)
{
    const auto result = report::parseDescriptors(content, "f");
    const auto* const found = std::get_if<Found>(&result);
    Require(found && found->size() == 1 && found->front().bytes == bytes);
}

// The descriptor written in each text format is read again.
void CheckFormats(const report::DescriptorBytes& bytes)
{
    const std::string count = std::to_string(bytes.size());
    report::RecordedDevice device;
    device.descriptor = bytes;
    RequireReads(report::toHex(bytes, ""), bytes);
    RequireReads("0x" + report::toHex(bytes, "\n0x"), bytes);
    RequireReads("u8 d[" + count + "] = {0x" + report::toHex(bytes, ",0x") + "};", bytes);
    RequireReads("1:2:3:DESCRIPTOR 4.5\n" + report::toHex(bytes), bytes);
    RequireReads(report::recordingHeader(device), bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string content(data, data + size);
    const auto result = report::parseDescriptors(content, "f");
    if (const auto* const error = std::get_if<report::DescriptorError>(&result)) {
        Require(!error->unreadable);
        if (!error->text.starts_with("f: "))
            RequirePlace(error->text, content);
    } else {
        for (const report::FoundDescriptor& found : std::get<Found>(result)) {
            Require(!found.bytes.empty() && found.bytes.size() <= report::kMaxDescriptorSize);
            CheckFormats(found.bytes);
        }
    }
    // A comment before it changes nothing.
    if (!IsBinary(content) && !HasByteOrderMark(content))
        Require(Text(report::parseDescriptors("#\n" + content, "f"), 1) == Text(result));
    return 0;
}
