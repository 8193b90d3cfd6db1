#include "report/format/recording.h"

#include "report/format/file_content.h"
#include "report/format/text_cursor.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdio>
#include <limits>
#include <map>

namespace report {
namespace {

using Direction = RecordedReport::Direction;
using std::chrono::microseconds;
using std::chrono::seconds;

constexpr size_t kMaxDeviceIndex = 65'535;
constexpr uint64_t kMaxId = 0xffff;
constexpr size_t kDecimals = 6;

// `text` with a blank in place of each control character and without blanks at both ends.
std::string oneLine(std::string_view text)
{
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; }, ' ');
    line.erase(line.find_last_not_of(' ') + 1); // npos + 1 is 0
    line.erase(0, line.find_first_not_of(' '));
    return line;
}

std::string timeText(microseconds time)
{
    const auto whole = std::chrono::duration_cast<seconds>(time);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%06lld.%06lld", static_cast<long long>(whole.count()),
        static_cast<long long>((time - whole).count()));
    return text.data();
}

// "LENGTH xx xx ..."
std::string bytesText(std::span<const uint8_t> bytes)
{
    const std::string length = std::to_string(bytes.size());
    return bytes.empty() ? length : length + ' ' + toHex(bytes);
}

// How the line of a report begins.
std::string_view keyOf(Direction direction)
{
    switch (direction) {
    case Direction::kInput:
        return "E:";
    case Direction::kOutput:
        return "# output";
    case Direction::kFeature:
        return "# feature";
    }
    return "";
}

// Whether `text` begins with a blank and a number with a decimal point, as nothing does that people
// or other programs write after these words.
bool beginsWithTime(std::string_view text)
{
    if (!text.starts_with(' '))
        return false;
    text.remove_prefix(1);
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    return digits > 0 && text.substr(digits).starts_with('.');
}

// The direction of the report in this line, if there is one.
std::optional<Direction> reportIn(std::string_view line)
{
    if (line.starts_with(keyOf(Direction::kInput)))
        return Direction::kInput;
    for (const Direction sent : {Direction::kOutput, Direction::kFeature})
        if (line.starts_with(keyOf(sent)) && beginsWithTime(line.substr(keyOf(sent).size())))
            return sent;
    return std::nullopt;
}

class Parser {
public:
    Parser(std::string_view text, const std::string& name)
        : text_(text, name)
    {
    }

    Recording parse()
    {
        while (!text_.atEnd())
            readLine();
        if (recording_.devices.empty())
            text_.failWith("expected a recording, found no device");
        return std::move(recording_);
    }

private:
    struct Progress {
        size_t index = 0;             // in Recording::devices
        std::string keys = {};        // of the lines about the device
        microseconds lastReport = {}; // time
    };

    void readLine()
    {
        text_.skipBlanks();
        const std::string_view line = text_.restOfLine();
        if (const auto direction = reportIn(line))
            readReport(*direction);
        else if (line.starts_with('#'))
            skipLine();
        else if (line.starts_with("D:"))
            readDeviceIndex();
        else if (!text_.atLineEnd())
            readFact();
        text_.readLineEnd();
    }

    void skipLine() { text_.moveTo(text_.position() + text_.restOfLine().size()); }

    void readDeviceIndex()
    {
        text_.skip("D:");
        text_.skipBlanks();
        current_ = text_.readNumber(10, kMaxDeviceIndex, "the index of a device, at most 65535");
    }

    // An R:, N:, P: or I: line.
    void readFact()
    {
        const std::string_view line = text_.restOfLine();
        if (line.size() < 2 || line[1] != ':'
            || std::string_view("RNPI").find(line[0]) == line.npos)
            text_.fail("a line that begins with D:, R:, N:, P:, I:, E: or #");
        const char key = line.front();
        RecordedDevice& device = deviceForFact(key);
        text_.skip(line.substr(0, 2));
        text_.skipBlanks();
        switch (key) {
        case 'R':
            device.descriptor = readBytes(1, kMaxDescriptorSize);
            break;
        case 'N':
            device.name = readRestOfLine();
            break;
        case 'P':
            device.physicalPath = readRestOfLine();
            break;
        default:
            device.bus = readId("bus type");
            device.vendorId = readId("vendor id");
            device.productId = readId("product id");
        }
    }

    RecordedDevice& deviceForFact(char key)
    {
        const auto [found, isNew] = progress_.try_emplace(current_);
        Progress& progress = found->second;
        if (isNew) {
            progress.index = recording_.devices.size();
            recording_.devices.emplace_back();
        }
        if (progress.keys.find(key) != progress.keys.npos)
            text_.failWith(std::string("expected one ") + key
                + ": line for each device, found another; a D: line begins another device");
        progress.keys += key;
        return recording_.devices[progress.index];
    }

    uint16_t readId(const std::string& what)
    {
        text_.skipBlanks();
        return static_cast<uint16_t>(
            text_.readNumber(16, kMaxId, "a hexadecimal " + what + " of at most ffff"));
    }

    std::string readRestOfLine()
    {
        std::string line = oneLine(text_.restOfLine());
        skipLine();
        return line;
    }

    void readReport(Direction direction)
    {
        const auto found = progress_.find(current_);
        if (found == progress_.end())
            text_.failWith("expected a line with R:, N:, P: or I: about device "
                + std::to_string(current_) + " before its reports, found none");
        text_.skip(keyOf(direction));
        RecordedReport report;
        report.device = found->second.index;
        report.direction = direction;
        report.time = readTime(found->second.lastReport);
        text_.skipBlanks();
        report.bytes = readBytes(0, kMaxReportSize);
        if (direction != Direction::kInput)
            report.failure = readResult(report.bytes.size());
        recording_.reports.push_back(std::move(report));
    }

    // `last` is the time before it, and becomes this one.
    microseconds readTime(microseconds& last)
    {
        text_.skipBlanks();
        const size_t begin = text_.position();
        const seconds whole(text_.readNumber(10, static_cast<uint64_t>(kMaxRecordedTime.count()),
            "a time of at most 4294967295 seconds"));
        if (!text_.skip("."))
            text_.fail("a decimal point after the seconds");
        const size_t decimals = text_.position();
        const microseconds part(
            text_.readNumber(10, std::numeric_limits<uint32_t>::max(), "six decimals"));
        if (text_.position() != decimals + kDecimals) {
            const size_t count = text_.position() - decimals;
            text_.moveTo(decimals);
            text_.failWith("expected six decimals, found " + std::to_string(count));
        }
        const microseconds time = whole + part;
        if (time < last) {
            text_.moveTo(begin);
            text_.failWith("expected " + timeText(last) + " or later, found an earlier time");
        }
        return last = time;
    }

    // A length and as many bytes.
    Bytes readBytes(size_t minimum, size_t maximum)
    {
        const size_t begin = text_.position();
        const std::string expected = "a length from " + std::to_string(minimum) + " to "
            + std::to_string(maximum) + " before the bytes";
        const size_t size = text_.readNumber(10, maximum, expected);
        if (text_.atHexDigit())
            text_.fail("a blank after the length, which is decimal");
        if (size < minimum) {
            text_.moveTo(begin);
            text_.fail(expected);
        }
        Bytes bytes;
        while (bytes.size() < size) {
            text_.skipBlanks();
            if (!text_.atHexDigit())
                text_.fail("byte " + std::to_string(bytes.size() + 1) + " of "
                    + std::to_string(size) + " (the length comes first)");
            bytes.push_back(text_.readHexPair());
            if (text_.atHexDigit())
                text_.fail("a blank after the byte's two digits");
        }
        text_.skipBlanks();
        if (text_.atHexDigit())
            text_.fail("the end of the line after " + std::to_string(size)
                + " bytes (the length comes first)");
        return bytes;
    }

    // The reason of a failure, if there was one.
    std::optional<std::string> readResult(size_t size)
    {
        text_.skipBlanks();
        if (!text_.skip("->"))
            text_.fail("-> after the report's " + std::to_string(size) + " bytes");
        text_.skipBlanks();
        if (text_.skip("failed")) {
            if (!text_.atLineEnd() && text_.rest().front() > ' ')
                text_.fail("a blank after failed");
            return readRestOfLine();
        }
        const size_t begin = text_.position();
        const std::string expected = std::to_string(size) + " or failed";
        if (text_.readNumber(10, size, expected) != size) {
            text_.moveTo(begin);
            text_.fail(expected);
        }
        return std::nullopt;
    }

    TextCursor text_;
    Recording recording_;
    std::map<size_t, Progress> progress_; // by device index in D: lines
    size_t current_ = 0;                  // such an index
};

} // namespace

RecordingResult parseRecording(std::string_view text, const std::string& name)
{
    try {
        return Parser(text, name).parse();
    } catch (const DescriptorError& error) {
        return error;
    }
}

RecordingResult readRecordingFile(const std::filesystem::path& file)
{
    try {
        return parseRecording(readFile(file, kMaxRecordingSize), file.string());
    } catch (const DescriptorError& error) {
        return error;
    }
}

std::string recordingDevice(size_t index)
{
    assert(index <= kMaxDeviceIndex);
    return "D: " + std::to_string(index) + '\n';
}

std::string recordingHeader(const RecordedDevice& device)
{
    assert(device.descriptor.size() <= kMaxDescriptorSize);
    std::string text;
    if (!device.descriptor.empty())
        text += "R: " + bytesText(device.descriptor) + '\n';
    text += "N: " + oneLine(device.name) + '\n';
    text += "P: " + oneLine(device.physicalPath) + '\n';
    std::array<char, 32> ids{};
    std::snprintf(ids.data(), ids.size(), "I: %x %04x %04x\n", unsigned{device.bus},
        unsigned{device.vendorId}, unsigned{device.productId});
    return text + ids.data();
}

std::string recordingLine(const RecordedReport& report)
{
    assert(report.time.count() >= 0 && report.time < kMaxRecordedTime + seconds(1));
    assert(report.bytes.size() <= kMaxReportSize);
    std::string line = std::string(keyOf(report.direction)) + ' ' + timeText(report.time) + ' '
        + bytesText(report.bytes);
    if (report.direction != Direction::kInput) {
        line += " -> ";
        if (report.failure)
            line += oneLine("failed " + *report.failure);
        else
            line += std::to_string(report.bytes.size());
    }
    return line + '\n';
}

} // namespace report
