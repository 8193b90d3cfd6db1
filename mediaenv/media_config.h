// The settings of the media component: its paths, its features and its log files.
#pragma once

#include "base/src/ini/ini.h"
#include "base/src/util/no_copy.h"

#include <memory>
#include <string>
#include <string_view>

namespace rkb {

// Reads the ini file that the environment variable MIVOMEDIA_INI_PATH names, once, when it is
// constructed. If only a part of the file can be read, the keys of that part are used; nothing is
// reported. A getter returns its default if the variable is unset or the file does not have the
// key. An integer is the result of strtol() for the stored text, so a word gives 0.
//
// Several threads may call the operations at once. While the constructor, env_rkb_home() or
// build_environment() reads the environment, no other thread may change it.
class media_config_t : no_copy {
public:
    // The settings of the process, created on first use and destroyed at exit.
    [[nodiscard]] static media_config_t& instance();

    // Reads the environment and the file.
    media_config_t();
    ~media_config_t();

    // Section "ENV": texts, empty by default. The path ends in "/" unless it is empty. A leading
    // "~" of the home is replaced by the value of the environment variable HOME, or removed if that
    // is unset.
    [[nodiscard]] std::string env_path() const;
    [[nodiscard]] std::string env_bin() const;
    [[nodiscard]] std::string env_rkb_home() const;

    // Section "PROFILER": texts, empty by default.
    [[nodiscard]] std::string profiler_tool() const;
    [[nodiscard]] std::string profiler_output() const;

    // Section "OS": the distribution, empty by default.
    [[nodiscard]] std::string os_distro() const;

    // Sections "CAP" and "FEATURE": as stored, 0 by default.
    [[nodiscard]] int capability1() const;
    [[nodiscard]] int share_offload() const;
    [[nodiscard]] int virtual_background() const;

    // Section "LOG". The number of files is 2 unless 1 or more is stored. The size is in MiB; it is
    // 10 unless 1 to 999 is stored. Rotation is true unless 0 is stored. The level is as stored, 0
    // by default.
    [[nodiscard]] int log_max_file_count() const;
    [[nodiscard]] int log_max_file_size() const;
    [[nodiscard]] bool log_rotation() const;
    [[nodiscard]] int log_level() const;

    // The value of any key, or `missing`.
    [[nodiscard]] std::string get_string(
        std::string_view section, std::string_view key, std::string_view missing) const;
    [[nodiscard]] int get_int(std::string_view section, std::string_view key, int missing) const;

    // Builds the environment of a child process: an array of texts NAME=value with a null at its
    // end. Each text is an array of 255 bytes and is cut at 254 characters. In this order:
    // - the keys of section "ENV" in file order. A leading "~" is replaced as by env_rkb_home().
    //   PATH and LD_LIBRARY_PATH end in "/" unless they are empty. They are not joined with the
    //   variables of this process that have the same names;
    // - copies of this process's variables for the display, PulseAudio and D-Bus, as far as they
    //   are set: see media_config.cpp for their names;
    // - MIVOMEDIA_INI_PATH.
    //
    // Returns 1; the caller owns the array and frees it with free_environment(). It has room for at
    // least 20 more entries. Returns 0 and does not change `*environment` if there is no ini file
    // or `environment` is null. Throws std::bad_alloc.
    [[nodiscard]] int build_environment(char*** environment) const;

    // Frees an array from build_environment(). Null is ignored.
    static void free_environment(char** environment);

private:
    static constexpr size_t path_size = 4096;

    char m_ini_path[path_size] = {}; // cut to 4095 characters
    std::unique_ptr<ini_t> m_ini;    // null without MIVOMEDIA_INI_PATH
};

} // namespace rkb
