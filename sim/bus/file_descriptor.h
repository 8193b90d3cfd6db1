// Owner of an open file.
#pragma once

#include <unistd.h>

#include <utility>

namespace sim {

class FileDescriptor {
public:
    explicit FileDescriptor(int fd = -1)
        : fd_(fd)
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : fd_(std::exchange(other.fd_, -1))
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(fd_, other.fd_);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { reset(); }

    int get() const { return fd_; }

    void reset()
    {
        if (fd_ >= 0)
            close(std::exchange(fd_, -1));
    }

private:
    int fd_;
};

} // namespace sim
