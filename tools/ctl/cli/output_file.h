// A file that appears under its name only when it is complete.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace ctl {

// Writes into a temporary file in the same directory, which finish() renames. A file that is not
// finished is removed, so that no part of a file stays. What is not a regular file, such as
// /dev/stdout or a named pipe, is written directly.
class OutputFile {
public:
    // Throws Failure if the file cannot be created.
    explicit OutputFile(const std::filesystem::path& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Each call writes at once and blocks as long as the file system does. Throws Failure with the
    // name of the file, for example if the disk is full.
    void write(std::string_view bytes);

    // For libraries that write to a stream: a new one that appends to the file. The caller closes
    // it before finish(), and checks it for errors, which it passes to fail(). Throws Failure.
    [[nodiscard]] std::FILE* openStream() const;

    // Throws Failure with the name of the file and the text of this error number.
    [[noreturn]] void fail(int error) const;

    // To be called once, after the last write(). Throws Failure; an existing file of the name is
    // unchanged then.
    void finish();

private:
    const std::filesystem::path path_;
    std::string temporary_; // empty if the file is written directly or finished
    int fd_ = -1;
};

} // namespace ctl
