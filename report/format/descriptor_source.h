// Report descriptors in files of the formats that people have. The content decides which one it is:
//
// - Binary, as in sysfs' report_descriptor: one of the first 16 bytes is a control character that
//   text does not contain. This holds for every descriptor with a Usage Page item near its start.
//   The bytes must be whole items, none of them reserved except zeros after the first item, with
//   which devices pad. So other binary files are refused. A descriptor of printable bytes only is
//   taken for text; write it in hexadecimal.
// - Text of usbhid-dump: the first line is BUS:DEVICE:INTERFACE:DESCRIPTOR or :STREAM. Gives one
//   descriptor for each DESCRIPTOR block. STREAM blocks have none.
// - A recording (report/recording.h): the first line has a key such as "R:". Gives one descriptor
//   for each device with an R: line.
// - C source: there is a brace before the first byte. Gives one descriptor for each array, whose
//   elements must begin with 0x. If the array is declared with a number of elements, it must have
//   that many.
// - Otherwise hexadecimal text (report/descriptor_file.h).
//
// A text is in UTF-8, with or without a byte order mark. Comments and blank lines may come before
// the first line, in a recording only comments with #. The output of xxd, hexdump and od is refused
// if it has offsets.
#pragma once

#include "report/format/descriptor_file.h"

#include <string>
#include <vector>

namespace report {

struct DeviceIds {
    uint16_t vendor = 0;
    uint16_t product = 0;
};

struct FoundDescriptor {
    DescriptorBytes bytes;
    // Distinguishes it from others in the file: "bus 001, device 005, interface 003", the name of
    // the recorded device, the name of the C array. Empty if the format has nothing of the kind.
    // This text and `name` come from the file: pass them to text::printable() before printing them.
    std::string label = {};
    std::optional<DeviceIds> ids = {}; // in a recording with an I: line
    std::string name = {};             // in a recording with an N: line
};

// One or more, in the order of the file.
using DescriptorsResult = std::variant<std::vector<FoundDescriptor>, DescriptorError>;

// Takes any content, in time and memory linear in its length. `name` is the FILE in errors, which
// name a line and a column, or for binary content an offset in bytes. Any thread.
[[nodiscard]] DescriptorsResult parseDescriptors(std::string_view content, const std::string& name);

// Blocks while the file is read. Files of more than kMaxRecordingSize bytes are refused. Any
// thread.
[[nodiscard]] DescriptorsResult readDescriptors(const std::filesystem::path& file);

} // namespace report
