// Arrays of bytes in C and C++ source.
#pragma once

#include "report/format/descriptor_source.h"
#include "report/format/text_cursor.h"

namespace report {

// Whether the text has a brace outside comments. Throws DescriptorError.
[[nodiscard]] bool isCSource(TextCursor text);

// Each array, labelled with its name, at least one. Takes only declarations of arrays of bytes with
// their elements, and declarations without braces, which have no meaning. Lines that begin with #
// are skipped outside of arrays, but not in them, where they may choose the elements. Throws
// DescriptorError.
[[nodiscard]] std::vector<FoundDescriptor> readCSource(TextCursor text);

} // namespace report
