// Recordings of the reports of one or more devices, in the text format of hid-recorder. One line
// for each fact, with a key before the first colon:
//
//     D: INDEX                             the next lines are about this device, 0 without such a
//                                          line; decimal
//     R: LENGTH xx xx ...                  report descriptor: length in bytes, decimal, then bytes
//     N: NAME                              name
//     P: PATH                              physical path
//     I: BUS VENDOR PRODUCT                bus type (3 is USB) and ids, hexadecimal
//     E: SECONDS.MICROSECONDS LENGTH xx... input report as on the wire; six decimals
//     # ...                                comment
//
// A device has at least one R:, N:, P: or I: line, and at most one of each, before its reports.
// Blank lines and blanks at both ends of a line have no meaning.
//
// The format has no lines for what the host sends. Kelprobe writes it in comments, which other
// programs skip:
//
//     # output SECONDS.MICROSECONDS LENGTH xx xx ... -> RESULT
//     # feature SECONDS.MICROSECONDS LENGTH xx xx ... -> RESULT
//
// where the bytes are as passed to hidapi, report id first (0 if there are no ids). RESULT is
// LENGTH again, or "failed" and, after a blank, the reason. A comment is of this kind if it begins
// with "# output " or "# feature " and a number with a decimal point. All others are skipped.
#pragma once

#include "report/bytes.h"
#include "report/format/descriptor_file.h"

#include <chrono>

namespace report {

// Longer files are refused. Room for more than a million reports of a telephony device.
inline constexpr size_t kMaxRecordingSize = 64 * 1024 * 1024;

// The length of a report with its id: USB gives it in 16 bits.
inline constexpr size_t kMaxReportSize = 65'535;

// Later times are refused. A day of the year 2106 in seconds since 1970, for recorders that write
// such times.
inline constexpr std::chrono::seconds kMaxRecordedTime{0xffff'ffff};

struct RecordedDevice {
    std::string name;         // one line without control characters, as is the path; not always
    std::string physicalPath; // UTF-8: pass both to text::printable() before printing them
    uint16_t bus = 3;         // 3 is USB
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    Bytes descriptor; // empty if the recording has no R: line for the device
};

struct RecordedReport {
    enum class Direction : uint8_t { kInput, kOutput, kFeature }; // the last two: sent by the host

    size_t device = 0;                // index in Recording::devices
    std::chrono::microseconds time{}; // on a clock of the device's own, which starts anywhere
    Direction direction = Direction::kInput;
    Bytes bytes;                             // input: as on the wire; otherwise report id first
    std::optional<std::string> failure = {}; // why a sent report was not taken; may be empty
};

struct Recording {
    std::vector<RecordedDevice> devices; // at least one
    std::vector<RecordedReport> reports; // in the order of the file
};

// A recording, or one line that names file, line and column of what is wrong, as for descriptors.
// The times of a device that go back are an error; those of different devices are not compared.
// Takes any text, in time and memory linear in its length. Any thread.
using RecordingResult = std::variant<Recording, DescriptorError>;
[[nodiscard]] RecordingResult parseRecording(std::string_view text, const std::string& name);

// Blocks while the file is read.
[[nodiscard]] RecordingResult readRecordingFile(const std::filesystem::path& file);

// The lines of a recording, each with its line end, so that a recording can be written as its
// reports arrive: for each device its header, then the reports. If there are several devices,
// recordingDevice() comes before each header and before a report of another device than the line
// before. In names, paths and reasons control characters become blanks; blanks at both ends go.
[[nodiscard]] std::string recordingDevice(size_t index);
[[nodiscard]] std::string recordingHeader(const RecordedDevice& device);
[[nodiscard]] std::string recordingLine(const RecordedReport& report); // ignores `device`

} // namespace report
