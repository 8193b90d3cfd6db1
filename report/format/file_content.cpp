#include "report/format/file_content.h"

#include "report/format/descriptor_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace report {
namespace {

constexpr size_t kMebibyte = size_t{1024} * 1024;

struct FileClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

DescriptorError errorFor(const std::filesystem::path& path, int error)
{
    return {path.string() + ": " + std::generic_category().message(error), true};
}

DescriptorError tooLarge(const std::filesystem::path& path, size_t maxSize)
{
    return {path.string() + ": more than " + std::to_string(maxSize / kMebibyte)
        + " MiB, the most that is read"};
}

} // namespace

std::string readFile(const std::filesystem::path& path, size_t maxSize)
{
    const std::unique_ptr<std::FILE, FileClose> file(std::fopen(path.c_str(), "rbe"));
    if (!file)
        throw errorFor(path, errno);
    std::string content;
    std::array<char, 4096> buffer;
    while (const size_t size = std::fread(buffer.data(), 1, buffer.size(), file.get())) {
        content.append(buffer.data(), size);
        if (content.size() > maxSize)
            throw tooLarge(path, maxSize);
    }
    if (std::ferror(file.get()))
        throw errorFor(path, errno);
    return content;
}

} // namespace report
