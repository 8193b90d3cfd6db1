#include "base/src/util/util.h"

#include "base/src/auxi/text_stream.h"

#include <array>
#include <cstdio>
#include <memory>
#include <pthread.h>
#include <unistd.h>

namespace rkb {

uint32_t process_id()
{
    static const auto id = static_cast<uint32_t>(getpid());
    return id;
}

uint32_t thread_id()
{
    thread_local const auto id = static_cast<uint32_t>(gettid());
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
