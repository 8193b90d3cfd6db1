#include "report/file_content.h"

#include "report/descriptor_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace report {
namespace {

struct FileClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

DescriptorError errorFor(const std::filesystem::path& path, int error)
{
    const bool unreadable = error != EFBIG;
    return {path.string() + ": " + std::generic_category().message(error), unreadable};
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
            throw errorFor(path, EFBIG);
    }
    if (std::ferror(file.get()))
        throw errorFor(path, errno);
    return content;
}

} // namespace report
