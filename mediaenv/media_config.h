// The settings of the media component: where it is, what it may do, how it logs.
#pragma once

#include "base/src/ini/ini.h"
#include "base/src/util/no_copy.h"

#include <memory>
#include <string>
#include <string_view>

namespace rkb {

// Answers from the ini file that the environment variable MIVOMEDIA_INI_PATH names. The file is
// read once, at construction; nothing is reported when that fails, in part or in whole. A getter
// returns its default when the variable is unset, or the file does not have the key; an integer
// is what strtol makes of the stored text, so 0 for a word.
//
// Any thread, several at once. Getters that look at the environment say so: no other thread may
// change it meanwhile.
class media_config_t : no_copy {
public:
    // The process's own settings, made on first use and destroyed at exit.
    [[nodiscard]] static media_config_t& instance();

    // Reads the environment and the file, for settings apart from the process's own.
    media_config_t();
    ~media_config_t();

    // Section "ENV": texts, empty by default. The path ends in "/" unless it is empty. In the home
    // a leading "~" stands for the value of the environment variable HOME (nothing when unset).
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

    // Section "LOG". Files: 1 and more, else 2. Size in MiB: 1 to 999, else 10. Rotation: true
    // unless the stored integer is 0. Level: as stored, 0 by default.
    [[nodiscard]] int log_max_file_count() const;
    [[nodiscard]] int log_max_file_size() const;
    [[nodiscard]] bool log_rotation() const;
    [[nodiscard]] int log_level() const;

    // Any key, with the caller's default.
    [[nodiscard]] std::string get_string(
        std::string_view section, std::string_view key, std::string_view missing) const;
    [[nodiscard]] int get_int(std::string_view section, std::string_view key, int missing) const;

    // Makes the environment of a child process: an array of texts NAME=value that ends with null,
    // each in 255 bytes of its own and cut at 254 characters. In this order:
    // - the keys of section "ENV" in file order, a leading "~" replaced as in env_rkb_home(), and
    //   "/" appended to non-empty values of PATH and LD_LIBRARY_PATH that do not end in one. They
    //   are not joined with this process's own variables of these names;
    // - what this process has of the variables that a program with a window and sound needs;
    // - MIVOMEDIA_INI_PATH.
    // Returns 1, the array then being the caller's, to go to free_environment(); or 0, and leaves
    // `*environment` as it is, when there is no ini file or `environment` is null. The array has
    // room for at least 20 entries more. Reads the environment.
    [[nodiscard]] int build_environment(char*** environment) const;

    // Frees what build_environment() made. Null is ignored.
    static void free_environment(char** environment);

private:
    static constexpr size_t path_size = 4096;

    char m_ini_path[path_size] = {}; // cut to what fits
    std::unique_ptr<ini_t> m_ini;    // null without MIVOMEDIA_INI_PATH
};

} // namespace rkb
