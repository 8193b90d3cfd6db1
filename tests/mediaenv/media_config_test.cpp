#include "media_config.h"

#include "temp_directory.h"

#include <vector>

namespace {

using rkb::media_config_t;

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
        setenv("MIVOMEDIA_INI_PATH", m_directory.file("media.ini", text).c_str(), 1);
    }

    // What all getters say of the file as it is now.
    static std::string answers()
    {
        const media_config_t c;
        std::ostringstream out;
        for (const std::string& text : {c.env_path(), c.env_bin(), c.env_rkb_home(),
                 c.profiler_tool(), c.profiler_output(), c.os_distro()})
            out << text << "|";
        for (const int number :
            {c.capability1(), c.share_offload(), c.virtual_background(), c.log_level(),
                c.log_max_file_count(), c.log_max_file_size(), int{c.log_rotation()}})
            out << number << "|";
        return out.str();
    }

    static std::vector<std::string> environment()
    {
        std::vector<std::string> entries;
        char** built = nullptr;
        EXPECT_EQ(media_config_t().build_environment(&built), 1);
        for (char** entry = built; entry && *entry; ++entry)
            entries.emplace_back(*entry);
        media_config_t::free_environment(built);
        return entries;
    }

    const test::TempDirectory m_directory;
    const std::string m_path = m_directory.path() + "media.ini";
};

TEST_F(MediaConfig, WithoutAFileAnswersDefaultsAndBuildsNoEnvironment)
{
    const std::string defaults = "||||||0|0|0|0|2|10|1|";
    EXPECT_EQ(answers(), defaults);
    EXPECT_EQ(media_config_t().get_string("ENV", "PATH", "mine"), "mine");
    EXPECT_EQ(media_config_t().get_int("LOG", "LOG_LEVEL", -5), -5);
    char* none = nullptr;
    char** environment_of_none = &none;
    EXPECT_EQ(media_config_t().build_environment(&environment_of_none), 0);
    EXPECT_EQ(environment_of_none, &none);
    media_config_t::free_environment(nullptr);
    setenv("MIVOMEDIA_INI_PATH", "/no/such/file", 1);
    EXPECT_EQ(answers(), defaults);
    EXPECT_EQ(environment(), std::vector<std::string>{"MIVOMEDIA_INI_PATH=/no/such/file"});
}

TEST_F(MediaConfig, AnswersWhatTheFileSaysWithinItsRanges)
{
    write("[ENV]\nPATH=~/bin\nBIN=~b\nRKB_HOME=~/rkb\n[PROFILER]\nTOOL=t\nOUTPUT=o\n"
          "[OS]\nOS_DISTRO=d\n[CAP]\nCAPABILITY1=-3\n[FEATURE]\nSHAREOFFLOAD=4\n"
          "VIRTUALBACKGROUND=5\n[LOG]\nLOG_LEVEL=-7\n");
    // The home is filled into the path for the child process only.
    EXPECT_EQ(answers(), "~/bin/|~b|/home/user/rkb|t|o|d|-3|4|5|-7|2|10|1|");
    const std::pair<std::string, std::string> limits[] = {{"-1", "2|10|1|"}, {"0", "2|10|0|"},
        {"1", "1|1|1|"}, {"999", "999|999|1|"}, {"1000", "1000|10|1|"}, {"true", "2|10|0|"}};
    for (const auto& [n, answer] : limits) {
        write("[LOG]\nMAX_FILE_COUNT=" + n + "\nMAX_FILE_SIZE=" + n + "\nROTATION=" + n);
        EXPECT_EQ(answers(), "||||||0|0|0|0|" + answer) << n;
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
}

TEST_F(MediaConfig, CutsLongTextsAndHasRoomForMany)
{
    const std::string longest(254 - 5, 'x');
    std::string text = "[ENV]\nPATH=" + longest + "\nNAME=" + longest + "yz\n";
    for (int i = 0; i < 1000; ++i)
        text += "k" + std::to_string(i) + "=v\n";
    write(text);
    // Of the path 4095 characters are kept: what is left names the file.
    const std::string path = std::string(4095 - m_path.size(), '/') + m_path;
    setenv("MIVOMEDIA_INI_PATH", (path + "cut").c_str(), 1);
    setenv("DISPLAY", std::string(100'000, 'd').c_str(), 1);
    const std::vector<std::string> entries = environment();
    ASSERT_EQ(entries.size(), 1004u);
    EXPECT_EQ(entries[0], "PATH=" + longest); // its slash is what was cut
    EXPECT_EQ(entries[1], "NAME=" + longest);
    EXPECT_EQ(entries[1002], "DISPLAY=" + std::string(254 - 8, 'd'));
    EXPECT_EQ(entries[1003], ("MIVOMEDIA_INI_PATH=" + path).substr(0, 254));
}

} // namespace
