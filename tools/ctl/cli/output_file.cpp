#include "tools/ctl/cli/output_file.h"

#include "tools/ctl/cli/failure.h"
#include "tools/ctl/cli/write_all.h"

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
constexpr int kMaxLinks = 40;  // as in Linux

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

// Where a chain of symbolic links leads, also to a file that does not exist yet. In a circle of
// links, another link.
std::filesystem::path targetOf(std::filesystem::path path)
{
    std::error_code error;
    for (int links = 0; links < kMaxLinks && std::filesystem::is_symlink(path, error); ++links) {
        const auto target = std::filesystem::read_symlink(path, error);
        if (error)
            break;
        path = path.parent_path() / target;
    }
    return path;
}

// A name of the file for linkat().
std::string nameInProc(int fd)
{
    return "/proc/self/fd/" + std::to_string(fd);
}

} // namespace

OutputFile::OutputFile(const std::filesystem::path& path)
    : path_(path)
    , target_(isSpecial(path) ? path : targetOf(path))
{
    std::error_code ignored;
    if (isSpecial(target_))
        fd_ = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
    else if (std::filesystem::is_symlink(target_, ignored))
        errno = ELOOP;
    else if (!openNameless())
        openTemporary();
    if (fd_ < 0)
        fail(errno);
}

bool OutputFile::openNameless()
{
    const auto directory = target_.has_parent_path() ? target_.parent_path() : ".";
    fd_ = open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kMode);
    if (fd_ >= 0 && access(nameInProc(fd_).c_str(), F_OK) != 0)
        close(std::exchange(fd_, -1)); // it could not be given a name
    nameless_ = fd_ >= 0;
    return nameless_;
}

void OutputFile::openTemporary()
{
    temporary_ = target_.string() + ".XXXXXX";
    fd_ = mkostemp(temporary_.data(), O_CLOEXEC);
    if (fd_ < 0)
        temporary_.clear();
    else
        fchmod(fd_, kMode & ~currentUmask()); // else it stays private
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
    if (const int error = writeAll(fd_, bytes))
        fail(error);
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

void OutputFile::linkTemporary()
{
    const std::string file = nameInProc(fd_);
    for (int number = 0; temporary_.empty(); ++number) {
        const std::string name = target_.string() + '.' + std::to_string(number);
        if (linkat(AT_FDCWD, file.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
            temporary_ = name;
        else if (errno != EEXIST)
            fail(errno);
    }
}

void OutputFile::finish()
{
    if (nameless_)
        linkTemporary(); // no call replaces an existing file by a nameless one
    if (close(std::exchange(fd_, -1)) != 0)
        fail(errno);
    if (temporary_.empty())
        return;
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0)
        fail(errno);
    temporary_.clear();
}

void OutputFile::fail(int error) const
{
    throw Failure(kNoAccess, path_.string() + ": " + std::generic_category().message(error));
}

} // namespace ctl
