// Recordings of a device's reports, in the text format of hid-recorder.
//
//     N: NAME                             name
//     P: PATH                             physical path
//     I: BUS VENDOR PRODUCT               bus type (3 is USB) and ids, hexadecimal
//     R: LENGTH xx xx ...                 report descriptor: decimal length in bytes, then the
//     bytes D: INDEX                            the next lines are about this device, if there are
//     several E: SECONDS.MICROSECONDS LENGTH xx.. input report as on the wire # ... comment
//
// The format has no lines for what the host sends. Kelprobe writes it in comments, which other
// programs skip, as
//
//     # output SECONDS.MICROSECONDS LENGTH xx xx ... -> RESULT
//     # feature SECONDS.MICROSECONDS LENGTH xx xx ... -> RESULT
//
// where the bytes are as passed to hidapi, report id first (0 if there are no ids), and RESULT is
// the number of bytes sent, or "failed" and, after a blank, the reason.
#pragma once

#include "report/bytes.h"
#include "report/descriptor_file.h"

#include <chrono>

namespace report {

struct RecordedDevice {
    std::string name;
    std::string physicalPath;
    uint16_t bus = 3; // 3 is USB
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    Bytes descriptor; // may be empty if the recording has no R: line for the device
};

struct RecordedReport {
    enum class Direction : uint8_t { kInput, kOutput, kFeature }; // the last two: sent by the host

    size_t device = 0;                // index in Recording::devices
    std::chrono::microseconds time{}; // since the first report
    Direction direction = Direction::kInput;
    Bytes bytes;                             // input: as on the wire; otherwise report id first
    std::optional<std::string> failure = {}; // why a sent report was not taken
};

struct Recording {
    std::vector<RecordedDevice> devices; // at least one
    std::vector<RecordedReport> reports; // in the order of the file
};

// A recording, or one line that names file, line and column of what is wrong, as for descriptors.
// Times that go back are an error. Takes any text.
using RecordingResult = std::variant<Recording, DescriptorError>;
[[nodiscard]] RecordingResult parseRecording(std::string_view text, const std::string& name);
[[nodiscard]] RecordingResult readRecordingFile(const std::filesystem::path& file);

// The lines of a recording, each with its line end. Names are written in one line: control
// characters become blanks.
[[nodiscard]] std::string recordingHeader(const RecordedDevice& device);
[[nodiscard]] std::string recordingLine(const RecordedReport& report); // ignores `device`

} // namespace report
