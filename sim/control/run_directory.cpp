#include "sim/control/run_directory.h"

#include "sim/control/bench_processes.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace fs = std::filesystem;

namespace sim {
namespace {

constexpr std::string_view kPrefix = "kelprobe-sim.";
constexpr const char* kLock = "lock";
constexpr const char* kSocket = "control";
constexpr const char* kGroup = "group";
constexpr size_t kMaxSocketPath = 107; // of a socket's address

fs::path temporaryDirectory()
{
    const char* const named = std::getenv("TMPDIR");
    const fs::path directory = named && *named ? named : "/tmp";
    if (!directory.is_absolute())
        throw std::runtime_error("TMPDIR is not an absolute path: " + directory.native());
    // Later benches compare the path with that in the environment of processes.
    std::error_code error;
    const fs::path resolved = fs::canonical(directory, error);
    return error ? directory : resolved;
}

FileDescriptor openLock(const fs::path& directory, int flags)
{
    const fs::path file = directory / kLock;
    return FileDescriptor(open(file.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | flags, 0600));
}

// False if another bench has it, or has removed it with its directory.
bool lock(const FileDescriptor& file)
{
    struct stat status = {};
    return file.get() >= 0 && flock(file.get(), LOCK_EX | LOCK_NB) == 0
        && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink > 0;
}

// As mkdtemp() makes it.
bool isRunDirectory(const fs::path& path)
{
    constexpr size_t kRandomCharacters = 6;
    const std::string name = path.filename();
    struct stat status = {};
    return name.starts_with(kPrefix) && name.size() == kPrefix.size() + kRandomCharacters
        && lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)
        && (status.st_mode & ALLPERMS) == S_IRWXU && status.st_uid == geteuid();
}

// The lock goes last: until then nobody takes the directory for one that is being made.
void removeContents(const fs::path& directory)
{
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(directory, ignored))
        if (entry.path().filename() != kLock)
            fs::remove_all(entry.path(), ignored);
    fs::remove(directory / kLock, ignored);
    fs::remove(directory, ignored);
}

void removeIfDead(const fs::path& directory)
{
    const FileDescriptor file = openLock(directory, 0);
    if (file.get() < 0 && errno == ENOENT) {
        rmdir(directory.c_str()); // without a lock it is new: its bench then makes another
    } else if (lock(file)) {
        endProcesses(
            {.socket = directory / kSocket, .group = ProcessGroup::load(directory / kGroup)},
            std::chrono::milliseconds(0));
        removeContents(directory);
    }
}

} // namespace

RunDirectory::RunDirectory()
{
    constexpr int kTries = 100;
    const fs::path parent = temporaryDirectory();
    for (int i = 0; i < kTries; ++i) {
        std::string path = parent / (std::string(kPrefix) + "XXXXXX");
        if (!mkdtemp(path.data()))
            throw std::runtime_error("cannot write in TMPDIR: " + parent.native());
        path_ = path;
        lock_ = openLock(path_, O_CREAT);
        if (lock(lock_))
            break;
        rmdir(path.c_str()); // fails if another bench has made a lock in it
        if (i + 1 == kTries)
            throw std::runtime_error("cannot lock a file in TMPDIR: " + parent.native());
    }
    if (socket().native().size() > kMaxSocketPath) {
        removeContents(path_);
        throw std::runtime_error(
            "the path of TMPDIR is too long for sockets below it: " + parent.native());
    }
}

fs::path RunDirectory::socket() const
{
    return path_ / kSocket;
}

fs::path RunDirectory::group() const
{
    return path_ / kGroup;
}

RunDirectory::~RunDirectory()
{
    removeContents(path_);
}

void removeDeadBenches()
{
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(temporaryDirectory(), ignored))
        if (isRunDirectory(entry.path()))
            removeIfDead(entry.path());
}

} // namespace sim
