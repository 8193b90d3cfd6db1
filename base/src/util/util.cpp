#include "base/src/util/util.h"

#include "base/src/auxi/text_stream.h"

#include <array>
#include <cstdio>
#include <memory>
#include <pthread.h>
#include <unistd.h>

namespace rkb {

namespace {

// 0 before the first call of a thread, and again in the only thread of a forked process.
thread_local constinit uint32_t cached_thread_id = 0;

// False until this initialiser has run. Until then nothing is cached.
const bool is_reset_by_fork = pthread_atfork(nullptr, nullptr, [] { cached_thread_id = 0; }) == 0;

} // namespace

uint32_t process_id()
{
    static const auto id = static_cast<uint32_t>(getpid());
    return id;
}

uint32_t thread_id()
{
    if (cached_thread_id)
        return cached_thread_id;
    const auto id = static_cast<uint32_t>(gettid());
    if (is_reset_by_fork)
        cached_thread_id = id;
    return id;
}

uint32_t thread_handle()
{
    return static_cast<uint32_t>(pthread_self());
}

std::string program_name()
{
    std::array<char, 32> path{};
    text_stream_t(path.data(), path.size()) << "/proc/" << process_id() << "/cmdline";
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.data(), "re"), fclose);
    if (!file)
        return {};
    std::array<char, 4096> arguments{}; // the last byte stays the first argument's terminator
    const size_t read = fread(arguments.data(), 1, arguments.size() - 1, file.get());
    arguments[read] = '\0';
    const std::string first = arguments.data();
    return first.substr(first.rfind('/') + 1);
}

} // namespace rkb
