// The environment of a child process.
#include "mediaenv/media_config.h"

#include "base/src/safe_c/safe_c.h"
#include "mediaenv/media_text.h"

#include <cstdlib>

namespace rkb {

namespace {

constexpr size_t entry_size = 255;
constexpr size_t spare_entries = 32; // for what comes besides the keys, and the final null

constexpr const char* copied_variables[]
    = {"DISPLAY", "XDG_RUNTIME_DIR", "XDG_SESSION_TYPE", "XAUTHORITY", "PULSE_DIR",
        "PULSE_RUNTIME_PATH", "PULSE_CONFIG_PATH", "PULSE_STATE_PATH", "DBUS_SESSION_BUS_ADDRESS"};

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
    *next = make_entry(media_ini_variable, m_ini_path);
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
