// Real files for tests, removed after each test.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

namespace test {

// A new, empty directory. The destructor removes it with its contents. Its path is short, because
// some of the code under test has room for 127 characters.
class TempDirectory {
public:
    TempDirectory()
        : path_(testing::TempDir() + "kp-XXXXXX")
    {
        EXPECT_TRUE(mkdtemp(path_.data())) << path_;
        path_ += '/';
    }
    ~TempDirectory()
    {
        std::error_code ignored; // a test may have removed it itself
        std::filesystem::remove_all(path_, ignored);
    }
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    // Ends in "/".
    const std::string& path() const { return path_; }

    // Makes or replaces the file `name` with these bytes and returns its path.
    std::string file(const std::string& name, std::string_view content) const
    {
        std::ofstream(path_ + name, std::ios::binary) << content;
        return path_ + name;
    }

private:
    std::string path_;
};

// The bytes of a file. Empty if it cannot be read.
inline std::string content(const std::filesystem::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// The names of the files in a directory and their contents.
inline std::map<std::string, std::string> filesIn(const std::filesystem::path& directory)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        if (entry.is_regular_file())
            files[entry.path().filename()] = content(entry.path());
    return files;
}

} // namespace test
