// For tests of logging, and of what is logged.
#pragma once

#include "base/src/log/log.h"
#include "base/src/log/logger_file_default.h"
#include "base/src/util/local_time.h"
#include "tests/support/temp_directory.h"

#include <cstdio>
#include <vector>

inline rkb::local_time_t test_now; // what the time source returns

// Each line's message: what follows the level's name.
inline std::string messages_of(const std::string& log)
{
    std::istringstream lines(log);
    std::string messages;
    for (std::string line; std::getline(lines, line);)
        messages += line.substr(line.rfind('\t') + 1) + (lines.eof() ? "" : "\n");
    return messages;
}

struct Recorder final : rkb::log_it {
    uint32_t write(uint32_t, uint32_t, const char* data, size_t length) override
    {
        lines.emplace_back(data, length);
        return result;
    }
    std::string messages() const
    {
        std::string text;
        for (const std::string& line : lines)
            text += messages_of(line);
        return text;
    }

    std::vector<std::string> lines;
    uint32_t result = 0;
};

// As log lines show it.
inline std::string address_of(const void* object)
{
    char text[32];
    snprintf(text, sizeof text, "0x%016zx", reinterpret_cast<size_t>(object));
    return text;
}

// The text of the log files in a directory.
inline std::string logs_in(const std::string& directory)
{
    std::string log;
    for (const auto& [name, text] : test::filesIn(directory))
        log += name.ends_with(".log") ? text : "";
    return log;
}

// A fresh log directory and a fixed time.
class LogTest : public testing::Test {
protected:
    void SetUp() override
    {
        setenv("RKB_HOME", directory().c_str(), 1);
        test_now = rkb::local_time_t{2026, 3, 14, 9, 5, 7, 42, 6};
        rkb::set_local_time_source([] { return test_now; });
    }

    // The control lives as long as the process. Resets it, without a line to the sinks of the test,
    // which are destroyed.
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
    const std::string& directory() const { return m_directory.path(); }
    std::string default_log() const { return logs_in(directory() + "logs"); }

    // From now on the library's own lines go to the sink.
    static void record_library(Recorder& sink)
    {
        rkb::register_logger_handle(&sink, 2);
        rkb::register_logger(rkb::log_module_util, "UTIL", 5, nullptr, 2);
    }

private:
    test::TempDirectory m_directory;
};
