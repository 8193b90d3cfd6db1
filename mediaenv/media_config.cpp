#include "mediaenv/media_config.h"

#include "base/src/safe_c/safe_c.h"

#include <cstdlib>

namespace rkb {

namespace {

constexpr const char* ini_variable = "MIVOMEDIA_INI_PATH";

constexpr size_t entry_size = 255;
constexpr size_t spare_entries = 32; // for all entries that are not keys, and the final null

constexpr const char* copied_variables[]
    = {"DISPLAY", "XDG_RUNTIME_DIR", "XDG_SESSION_TYPE", "XAUTHORITY", "PULSE_DIR",
        "PULSE_RUNTIME_PATH", "PULSE_CONFIG_PATH", "PULSE_STATE_PATH", "DBUS_SESSION_BUS_ADDRESS"};

// `value` with a leading "~" replaced by the value of the environment variable HOME.
std::string with_home(std::string value)
{
    if (value.starts_with('~')) {
        const char* const home = getenv("HOME");
        value.replace(0, 1, home ? home : "");
    }
    return value;
}

// `value` ending in "/", or empty.
std::string with_final_slash(std::string value)
{
    if (!value.empty() && !value.ends_with('/'))
        value += '/';
    return value;
}

struct environment_deleter_t {
    void operator()(char** environment) const { media_config_t::free_environment(environment); }
};

char* make_entry(const char* name, const char* value)
{
    const std::string text = std::string(name).append("=").append(value);
    char* const entry = new char[entry_size];
    strncpy_s(entry, entry_size, text.c_str(), entry_size - 1);
    return entry;
}

char* make_entry_of_key(const std::string& key, std::string value)
{
    value = with_home(std::move(value));
    if (key == "PATH" || key == "LD_LIBRARY_PATH")
        value = with_final_slash(std::move(value));
    return make_entry(key.c_str(), value.c_str());
}

} // namespace

media_config_t& media_config_t::instance()
{
    static media_config_t config;
    return config;
}

media_config_t::media_config_t()
{
    const char* const path = getenv(ini_variable);
    if (!path)
        return;
    strncpy_s(m_ini_path, sizeof m_ini_path, path, sizeof m_ini_path - 1);
    m_ini = std::make_unique<ini_t>(m_ini_path);
    // If only a part of the file can be read, the keys of that part are used.
    static_cast<void>(m_ini->load());
}

media_config_t::~media_config_t()
{
    if (m_ini)
        m_ini->release();
}

std::string media_config_t::env_path() const
{
    return with_final_slash(get_string("ENV", "PATH", ""));
}

std::string media_config_t::env_bin() const
{
    return get_string("ENV", "BIN", "");
}

std::string media_config_t::env_rkb_home() const
{
    return with_home(get_string("ENV", "RKB_HOME", ""));
}

std::string media_config_t::profiler_tool() const
{
    return get_string("PROFILER", "TOOL", "");
}

std::string media_config_t::profiler_output() const
{
    return get_string("PROFILER", "OUTPUT", "");
}

std::string media_config_t::os_distro() const
{
    return get_string("OS", "OS_DISTRO", "");
}

int media_config_t::capability1() const
{
    return get_int("CAP", "CAPABILITY1", 0);
}

int media_config_t::share_offload() const
{
    return get_int("FEATURE", "SHAREOFFLOAD", 0);
}

int media_config_t::virtual_background() const
{
    return get_int("FEATURE", "VIRTUALBACKGROUND", 0);
}

int media_config_t::log_max_file_count() const
{
    constexpr int fallback = 2;
    const int count = get_int("LOG", "MAX_FILE_COUNT", fallback);
    return count > 0 ? count : fallback;
}

int media_config_t::log_max_file_size() const
{
    constexpr int fallback = 10;
    const int size = get_int("LOG", "MAX_FILE_SIZE", fallback);
    return size >= 1 && size <= 999 ? size : fallback;
}

bool media_config_t::log_rotation() const
{
    return get_int("LOG", "ROTATION", 1) != 0;
}

int media_config_t::log_level() const
{
    return get_int("LOG", "LOG_LEVEL", 0);
}

std::string media_config_t::get_string(
    std::string_view section, std::string_view key, std::string_view missing) const
{
    return m_ini ? m_ini->get_string(section, key, missing) : std::string(missing);
}

int media_config_t::get_int(std::string_view section, std::string_view key, int missing) const
{
    return m_ini ? m_ini->get_int(section, key, missing) : missing;
}

int media_config_t::build_environment(char*** environment) const
{
    if (!environment || !m_ini)
        return 0;
    const std::vector<std::string> keys = m_ini->key_names("ENV");
    std::unique_ptr<char*[], environment_deleter_t> entries(
        new char*[keys.size() + spare_entries]());
    char** next = entries.get();
    for (const std::string& key : keys)
        *next++ = make_entry_of_key(key, m_ini->get_string("ENV", key, ""));
    for (const char* const name : copied_variables) {
        if (const char* const value = getenv(name))
            *next++ = make_entry(name, value);
    }
    *next = make_entry(ini_variable, m_ini_path);
    *environment = entries.release();
    return 1;
}

void media_config_t::free_environment(char** environment)
{
    if (!environment)
        return;
    for (char** entry = environment; *entry; ++entry)
        delete[] * entry;
    delete[] environment;
}

} // namespace rkb
