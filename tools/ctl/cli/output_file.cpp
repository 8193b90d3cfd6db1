#include "tools/ctl/cli/output_file.h"

#include "tools/ctl/cli/command.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace ctl {
namespace {

constexpr mode_t kMode = 0666; // without the bits of the umask, as for any new file

mode_t currentUmask()
{
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

bool isSpecial(const std::filesystem::path& path)
{
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

} // namespace

OutputFile::OutputFile(const std::filesystem::path& path)
    : path_(path)
{
    if (isSpecial(path)) {
        fd_ = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    } else {
        temporary_ = path.string() + ".XXXXXX";
        fd_ = mkostemp(temporary_.data(), O_CLOEXEC);
        if (fd_ >= 0)
            fchmod(fd_, kMode & ~currentUmask()); // else it stays private
    }
    if (fd_ < 0)
        fail(errno);
}

OutputFile::~OutputFile()
{
    if (fd_ >= 0)
        close(fd_);
    if (!temporary_.empty())
        unlink(temporary_.c_str());
}

void OutputFile::write(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t size = ::write(fd_, bytes.data(), bytes.size());
        if (size >= 0)
            bytes.remove_prefix(static_cast<size_t>(size));
        else if (errno != EINTR)
            fail(errno);
    }
}

std::FILE* OutputFile::openStream() const
{
    const int fd = fcntl(fd_, F_DUPFD_CLOEXEC, 0);
    if (fd < 0)
        fail(errno);
    std::FILE* const stream = fdopen(fd, "wb");
    if (!stream) {
        const int error = errno;
        close(fd);
        fail(error);
    }
    return stream;
}

void OutputFile::finish()
{
    if (close(std::exchange(fd_, -1)) != 0)
        fail(errno);
    if (temporary_.empty())
        return;
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0)
        fail(errno);
    temporary_.clear();
}

void OutputFile::fail(int error) const
{
    throw Failure(kNoAccess, path_.string() + ": " + std::generic_category().message(error));
}

} // namespace ctl
