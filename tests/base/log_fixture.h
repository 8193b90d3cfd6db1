// What the tests of logging share: a fresh directory, a fixed time, a recording sink.
#pragma once

#include "local_time.h"
#include "log.h"
#include "logger_file_default.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

inline rkb::local_time_t test_now; // what the time source says

// Short, because paths of files to be removed are cut at 127 characters.
class Directory {
public:
    Directory()
        : m_path(testing::TempDir() + "kl-XXXXXX")
    {
        EXPECT_TRUE(mkdtemp(m_path.data()));
        m_path += '/';
    }
    ~Directory() { std::filesystem::remove_all(m_path); }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

inline std::string content(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// File names below the directory and what they hold.
inline std::map<std::string, std::string> files_in(const std::string& path)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(path))
        if (entry.is_regular_file())
            files[entry.path().filename()] = content(entry.path());
    return files;
}

struct Recorder final : rkb::log_it {
    uint32_t write(uint32_t module_id, uint32_t level, const char* data, size_t length) override
    {
        EXPECT_LT(module_id, 256u);
        EXPECT_LT(level, 32u);
        lines.emplace_back(data, length);
        return answer;
    }
    // The message of the last line: what follows the level's name.
    std::string message() const
    {
        return lines.empty() ? "" : lines.back().substr(lines.back().rfind('\t') + 1);
    }

    std::vector<std::string> lines;
    uint32_t answer = 0;
};

class LogTest : public testing::Test {
protected:
    void SetUp() override
    {
        setenv("RKB_HOME", m_directory.path().c_str(), 1);
        test_now = rkb::local_time_t{2026, 3, 14, 9, 5, 7, 42, 6};
        rkb::set_local_time_source([] { return test_now; });
    }

    // The control lives as long as the process: leave it as it was found, without a word to the
    // sinks of the test, which are gone.
    void TearDown() override
    {
        rkb::enable_logger(255);
        rkb::log_control_t::set_default_flags(3);
        for (uint32_t id = 0; id < rkb::log_module_count; ++id)
            control().unregister_module(id);
        rkb::destroy_default_file_sink();
        control().forget_sinks();
        rkb::enable_logger(32);
        rkb::set_local_time_source(nullptr);
    }

    static rkb::log_control_t& control() { return *rkb::log_control_t::instance(); }
    static bool enabled(uint32_t module_id, uint32_t level)
    {
        const char* module_name = nullptr;
        const char* level_name = nullptr;
        return control().is_enabled(module_id, level, module_name, level_name);
    }
    const std::string& directory() const { return m_directory.path(); }

private:
    Directory m_directory;
};
