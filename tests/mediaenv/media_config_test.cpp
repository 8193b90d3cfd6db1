#include "media_config.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

using rkb::media_config_t;

std::string path_of(std::string_view name)
{
    const char* test = testing::UnitTest::GetInstance()->current_test_info()->name();
    return testing::TempDir() + "kelprobe-" + test + std::string(name);
}

class MediaConfig : public testing::Test {
protected:
    void SetUp() override
    {
        setenv("HOME", "/home/user", 1);
        for (const char* name : {"DISPLAY", "XDG_RUNTIME_DIR", "XDG_SESSION_TYPE", "XAUTHORITY",
                 "PULSE_DIR", "PULSE_RUNTIME_PATH", "PULSE_CONFIG_PATH", "PULSE_STATE_PATH",
                 "DBUS_SESSION_BUS_ADDRESS", "MIVOMEDIA_INI_PATH"})
            unsetenv(name);
    }

    // Makes `text` the media ini file.
    void write(std::string_view text)
    {
        std::ofstream(m_path, std::ios::binary) << text;
        setenv("MIVOMEDIA_INI_PATH", m_path.c_str(), 1);
    }

    std::vector<std::string> environment()
    {
        std::vector<std::string> entries;
        char** built = nullptr;
        EXPECT_EQ(media_config_t().build_environment(&built), 1);
        for (char** entry = built; entry && *entry; ++entry)
            entries.emplace_back(*entry);
        media_config_t::free_environment(built);
        return entries;
    }

    const std::string m_path = path_of(".ini");
};

void expect_defaults(const media_config_t& config)
{
    for (const std::string& text : {config.env_path(), config.env_bin(), config.env_rkb_home(),
             config.profiler_tool(), config.profiler_output(), config.os_distro()})
        EXPECT_EQ(text, "");
    for (const int number : {config.capability1(), config.share_offload(),
             config.virtual_background(), config.log_level()})
        EXPECT_EQ(number, 0);
    EXPECT_EQ(config.log_max_file_count(), 2);
    EXPECT_EQ(config.log_max_file_size(), 10);
    EXPECT_TRUE(config.log_rotation());
    EXPECT_EQ(config.get_string("ENV", "PATH", "mine"), "mine");
    EXPECT_EQ(config.get_int("LOG", "LOG_LEVEL", -5), -5);
}

TEST_F(MediaConfig, WithoutAFileAnswersDefaultsAndBuildsNoEnvironment)
{
    const media_config_t config;
    expect_defaults(config);
    char* none = nullptr;
    char** environment = &none;
    EXPECT_EQ(config.build_environment(&environment), 0);
    EXPECT_EQ(environment, &none);
    media_config_t::free_environment(nullptr);
}

TEST_F(MediaConfig, TakesAFileThatCannotBeReadForAnEmptyOne)
{
    setenv("MIVOMEDIA_INI_PATH", "/no/such/file", 1);
    expect_defaults(media_config_t());
    setenv("MIVOMEDIA_INI_PATH", "", 1);
    EXPECT_EQ(environment(), std::vector<std::string>{"MIVOMEDIA_INI_PATH="});
}

TEST_F(MediaConfig, AnswersWhatTheFileSays)
{
    write("[ENV]\nPATH=~/bin\nBIN=~b\nRKB_HOME=~/rkb\n[PROFILER]\nTOOL=t\nOUTPUT=o\n"
          "[OS]\nOS_DISTRO=d\n[CAP]\nCAPABILITY1=-3\n[FEATURE]\nSHAREOFFLOAD=4\n"
          "VIRTUALBACKGROUND=5\n[LOG]\nLOG_LEVEL=-7\n");
    const media_config_t config;
    EXPECT_EQ(config.env_path(), "~/bin/"); // the home is filled in for the child process only
    EXPECT_EQ(config.env_bin(), "~b");
    EXPECT_EQ(config.env_rkb_home(), "/home/user/rkb");
    EXPECT_EQ(config.profiler_tool() + config.profiler_output() + config.os_distro(), "tod");
    EXPECT_EQ(config.capability1(), -3);
    EXPECT_EQ(config.share_offload(), 4);
    EXPECT_EQ(config.virtual_background(), 5);
    EXPECT_EQ(config.log_level(), -7);
}

TEST_F(MediaConfig, TakesLogLimitsWithinTheirRanges)
{
    struct row_t {
        const char* stored;
        int count;
        int size;
        bool rotation;
    };
    const row_t rows[] = {
        {"-1", 2, 10, true}, {"0", 2, 10, false}, {"1", 1, 1, true}, {"999", 999, 999, true},
        {"1000", 1000, 10, true}, {"true", 2, 10, false}, // a word is 0
    };
    for (const row_t& row : rows) {
        SCOPED_TRACE(row.stored);
        std::string text = "[LOG]\n";
        for (const char* key : {"MAX_FILE_COUNT=", "MAX_FILE_SIZE=", "ROTATION="})
            text.append(key).append(row.stored).append("\n");
        write(text);
        const media_config_t config;
        EXPECT_EQ(config.log_max_file_count(), row.count);
        EXPECT_EQ(config.log_max_file_size(), row.size);
        EXPECT_EQ(config.log_rotation(), row.rotation);
    }
}

TEST_F(MediaConfig, BuildsTheEnvironmentInOrder)
{
    write("[ENV]\nZ=~/z\nPATH=~/bin\nLD_LIBRARY_PATH=/lib/\nBIN=a~\nPATH2=/x\nEMPTY=\n");
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/bus", 1);
    setenv("DISPLAY", ":1", 1);
    setenv("PULSE_DIR", "", 1);
    EXPECT_EQ(environment(),
        (std::vector<std::string>{"Z=/home/user/z", "PATH=/home/user/bin/", "LD_LIBRARY_PATH=/lib/",
            "BIN=a~", "PATH2=/x", "EMPTY=", "DISPLAY=:1", "PULSE_DIR=",
            "DBUS_SESSION_BUS_ADDRESS=unix:path=/run/bus", "MIVOMEDIA_INI_PATH=" + m_path}));

    write("[ENV]\nPATH=~\nLD_LIBRARY_PATH=\n");
    unsetenv("HOME");
    EXPECT_EQ(environment()[0], "PATH=");
    EXPECT_EQ(environment()[1], "LD_LIBRARY_PATH=");
    setenv("HOME", "/root/", 1);
    EXPECT_EQ(environment()[0], "PATH=/root/");
}

TEST_F(MediaConfig, CutsLongEntriesAndHasRoomForMany)
{
    const std::string longest(254 - 5, 'x');
    std::string text = "[ENV]\nPATH=" + longest + "\nNAME=" + longest + "yz\n";
    for (int i = 0; i < 1000; ++i)
        text += "k" + std::to_string(i) + "=v\n";
    write(text);
    setenv("DISPLAY", std::string(100'000, 'd').c_str(), 1);
    const std::vector<std::string> entries = environment();
    ASSERT_EQ(entries.size(), 1004u);
    EXPECT_EQ(entries[0], "PATH=" + longest); // its slash is what was cut
    EXPECT_EQ(entries[1], "NAME=" + longest);
    EXPECT_EQ(entries[1002], "DISPLAY=" + std::string(254 - 8, 'd'));
    EXPECT_EQ(entries[1003], "MIVOMEDIA_INI_PATH=" + m_path);
}

TEST_F(MediaConfig, CutsThePathOfItsFile)
{
    // What is left of the path names the file: 4095 characters are kept.
    write("[OS]\nOS_DISTRO=found\n");
    const std::string slashes(4095 - m_path.size(), '/');
    setenv("MIVOMEDIA_INI_PATH", (slashes + m_path + "cut").c_str(), 1);
    EXPECT_EQ(media_config_t().os_distro(), "found");
    EXPECT_EQ(environment().back().size(), 254u);
}

TEST_F(MediaConfig, ReadsItsFileOnce)
{
    write("[OS]\nOS_DISTRO=first\n");
    const media_config_t config;
    write("[OS]\nOS_DISTRO=second\n");
    EXPECT_EQ(config.os_distro(), "first");
    EXPECT_EQ(&media_config_t::instance(), &media_config_t::instance());
}

} // namespace
