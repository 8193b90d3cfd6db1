// A file that appears under its name only when it is complete.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace ctl {

// Writes into a file without a name in the same directory, which finish() gives its name. So no
// part of a file stays, even if the process is killed. If the file system has no files without a
// name, as FAT and NFS, this is a temporary file; one that is not finished is removed, but stays if
// the process is killed. A symbolic link stays, and its target is written. What is not a regular
// file, such as a pipe or a terminal, is written directly.
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
    [[nodiscard]] bool openNameless(); // false if there is no such file here
    void openTemporary();              // leaves errno if it fails
    void linkTemporary();              // gives a nameless file a temporary name

    const std::filesystem::path path_;   // in errors
    const std::filesystem::path target_; // of a symbolic link; otherwise the same
    std::string temporary_;              // empty if there is none
    int fd_ = -1;
    bool nameless_ = false;
};

} // namespace ctl
