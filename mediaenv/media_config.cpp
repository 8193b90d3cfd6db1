#include "mediaenv/media_config.h"

#include "base/src/safe_c/safe_c.h"
#include "mediaenv/media_text.h"

#include <cstdlib>

namespace rkb {

media_config_t& media_config_t::instance()
{
    static media_config_t config;
    return config;
}

media_config_t::media_config_t()
{
    const char* const path = getenv(media_ini_variable);
    if (!path)
        return;
    strncpy_s(m_ini_path, sizeof m_ini_path, path, sizeof m_ini_path - 1);
    m_ini = std::make_unique<ini_t>(m_ini_path);
    // What could be read counts, however the file ended.
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

} // namespace rkb
