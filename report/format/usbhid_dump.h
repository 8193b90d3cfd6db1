// The text that usbhid-dump prints.
#pragma once

#include "report/format/descriptor_source.h"
#include "report/format/text_cursor.h"

namespace report {

// Whether a text of which this is the first line is of this format.
[[nodiscard]] bool isUsbhidDump(std::string_view line);

// The descriptors in the DESCRIPTOR blocks, at least one. Throws DescriptorError.
[[nodiscard]] std::vector<FoundDescriptor> readUsbhidDump(TextCursor text);

} // namespace report
