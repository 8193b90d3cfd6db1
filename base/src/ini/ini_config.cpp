#include "base/src/ini/ini_config.h"

#include <cstdlib>

namespace rkb {

namespace {

std::string_view stripped(std::string_view text)
{
    constexpr std::string_view white_space = " \t\n\v\f\r";
    const size_t begin = text.find_first_not_of(white_space);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(white_space) - begin + 1);
}

// Empty when the program's base name has no "-".
std::string_view program_suffix(std::string_view program_path)
{
    const std::string_view base = program_path.substr(program_path.rfind('/') + 1);
    const size_t dash = base.rfind('-');
    return dash == std::string_view::npos ? std::string_view() : base.substr(dash + 1);
}

} // namespace

std::string config_file_path(std::string_view program_path)
{
    const char* const variable = getenv("RKB_HOME");
    std::string path(stripped(variable ? variable : ""));
    if (path.empty())
        return path;
    path += path.back() == '/' ? "conf/rkb" : "/conf/rkb";
    const std::string_view suffix = program_suffix(program_path);
    if (!suffix.empty())
        path.append("-").append(suffix);
    return path += ".cfg";
}

} // namespace rkb
