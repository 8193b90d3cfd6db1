#include "mediaenv/media_config.h"

#include "tests/support/temp_directory.h"

namespace {

using rkb::media_config_t;

class MediaConfig : public testing::Test {
protected:
    void SetUp() override
    {
        clearenv();
        setenv("HOME", "/home/user", 1);
        setenv("MIVOMEDIA_INI_PATH", m_path.c_str(), 1);
    }
    void write(std::string_view text) { m_directory.file("media.ini", text); }

    // What all getters return for the file as it is now.
    static std::string answers(const media_config_t& c = media_config_t())
    {
        std::string text;
        for (const std::string& answer : {c.env_path(), c.env_bin(), c.env_rkb_home(),
                 c.profiler_tool(), c.profiler_output(), c.os_distro()})
            text += answer + "|";
        for (const int answer : {c.capability1(), c.share_offload(), c.virtual_background(),
                 c.log_level(), c.log_max_file_count(), c.log_max_file_size(), +c.log_rotation()})
            text += std::to_string(answer) + "|";
        return text;
    }

    // The environment that is built from it, with a bar after each entry; "none" without one.
    static std::string environment()
    {
        char** entries = nullptr;
        const int has_file = media_config_t().build_environment(&entries);
        std::string text = has_file ? "" : "none";
        for (char** entry = entries; entry && *entry; ++entry)
            text.append(*entry).append("|");
        media_config_t::free_environment(entries);
        return text;
    }

    const test::TempDirectory m_directory;
    const std::string m_path = m_directory.path() + "media.ini";
};

TEST_F(MediaConfig, ReturnsWhatTheFileSaysWithinItsRangesElseDefaults)
{
    EXPECT_EQ(answers(), "||||||0|0|0|0|2|10|1|"); // no such file
    write("[ENV]\nPATH=~/bin\nBIN=~b\nRKB_HOME=~/rkb\n[PROFILER]\nTOOL=t\nOUTPUT=o\n"
          "[OS]\nOS_DISTRO=d\n[CAP]\nCAPABILITY1=-3\n[FEATURE]\nSHAREOFFLOAD=4\n"
          "VIRTUALBACKGROUND=5\n[LOG]\nLOG_LEVEL=-7\n");
    const media_config_t config; // reads its file once
    const std::pair<std::string, std::string> limits[] = {{"-1", "2|10|1|"}, {"0", "2|10|0|"},
        {"1", "1|1|1|"}, {"999", "999|999|1|"}, {"1000", "1000|10|1|"}, {"true", "2|10|0|"}};
    for (const auto& [n, answer] : limits) {
        std::string text = "[LOG]";
        for (const char* key : {"\nMAX_FILE_COUNT=", "\nMAX_FILE_SIZE=", "\nROTATION="})
            text.append(key).append(n);
        write(text);
        EXPECT_EQ(answers(), "||||||0|0|0|0|" + answer) << n;
    }
    // The home is filled into the path for the child process only.
    EXPECT_EQ(answers(config), "~/bin/|~b|/home/user/rkb|t|o|d|-3|4|5|-7|2|10|1|");
    unsetenv("MIVOMEDIA_INI_PATH");
    EXPECT_EQ(answers(), "||||||0|0|0|0|2|10|1|");
    EXPECT_EQ(media_config_t().get_string("ENV", "PATH", "mine"), "mine");
    EXPECT_EQ(environment(), "none");
}

TEST_F(MediaConfig, BuildsTheEnvironmentInOrder)
{
    EXPECT_EQ(environment(), "MIVOMEDIA_INI_PATH=" + m_path + "|"); // no such file
    write("[ENV]\nZ=~/z\nPATH=~/bin\nLD_LIBRARY_PATH=/lib/\nBIN=a~\nPATH2=/x\nEMPTY=\n");
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/bus", 1);
    setenv("XDG_RUNTIME_DIR", "/run", 1);
    setenv("DISPLAY", ":1", 1);
    setenv("PULSE_RUNTIME_PATH", "", 1);
    setenv("PULSE_DIR", "d", 1);
    const std::string end = "DISPLAY=:1|XDG_RUNTIME_DIR=/"
                            "run|PULSE_DIR=d|PULSE_RUNTIME_PATH=|DBUS_SESSION_BUS_ADDRESS="
                            "unix:path=/run/bus|MIVOMEDIA_INI_PATH="
        + m_path + "|";
    EXPECT_EQ(environment(),
        "Z=/home/user/z|PATH=/home/user/bin/|LD_LIBRARY_PATH=/lib/|BIN=a~|PATH2=/x|EMPTY=|" + end);
    write("[ENV]\nPATH=~\nLD_LIBRARY_PATH=/lib\n");
    unsetenv("HOME");
    EXPECT_EQ(environment(), "PATH=|LD_LIBRARY_PATH=/lib/|" + end);
}

TEST_F(MediaConfig, CutsLongTextsAndHasRoomForMany)
{
    const std::string longest(254 - 5, 'x');
    std::string text = "[ENV]\nPATH=" + longest + "\nNAME=" + longest + "yz\n";
    std::string expected = "PATH=" + longest + "|NAME=" + longest + "|"; // a slash is what was cut
    for (int i = 0; i < 1000; ++i) {
        text += "k" + std::to_string(i) + "=v\n";
        expected += "k" + std::to_string(i) + "=v|";
    }
    write(text);
    // Of the path 4095 characters are kept: what is left names the file.
    const std::string path = std::string(4095 - m_path.size(), '/') + m_path;
    setenv("MIVOMEDIA_INI_PATH", (path + "cut").c_str(), 1);
    EXPECT_EQ(environment(), expected + ("MIVOMEDIA_INI_PATH=" + path).substr(0, 254) + "|");
}

} // namespace
