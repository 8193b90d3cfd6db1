// Report descriptors in text files.
//
// The text holds the descriptor's bytes as pairs of hexadecimal digits of either case. Blanks, line
// ends and single commas may separate the pairs, and each pair may begin with 0x. Comments begin
// with # or // and extend to the end of the line, or are enclosed in /* and */. Plain hexadecimal
// dumps and the values of C arrays can be read. Anything else is an error, as is a text without
// bytes.
#pragma once

#include "report/bytes.h"

#include <cstddef>
#include <filesystem>
#include <variant>

namespace report {

// A USB device gives the length of its report descriptor in 16 bits.
inline constexpr size_t kMaxDescriptorSize = 65'535;

// Longer files are refused. Allows 64 characters for each byte of the longest descriptor.
inline constexpr size_t kMaxFileSize = 4 * 1024 * 1024;

using DescriptorBytes = Bytes; // 1 to kMaxDescriptorSize

struct DescriptorError {
    // One line. "FILE:LINE:COLUMN: expected ..., found ..." for a text with an error (line and
    // column count from 1, the column in bytes), "FILE: ..." for a file that cannot be read.
    std::string text;
    bool unreadable = false; // the file cannot be read; otherwise its content is wrong
};

using DescriptorResult = std::variant<DescriptorBytes, DescriptorError>;

// `name` is the FILE in errors. Any thread.
[[nodiscard]] DescriptorResult parseDescriptor(std::string_view text, const std::string& name);

// Any thread. Blocks while the file is read.
[[nodiscard]] DescriptorResult readDescriptorFile(const std::filesystem::path& file);

} // namespace report
