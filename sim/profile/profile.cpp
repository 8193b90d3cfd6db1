#include "sim/profile/profile.h"

#include "tools/text/printable.h"

#include <cassert>

namespace sim {
namespace {

std::vector<std::string> printable(std::vector<std::string> list)
{
    for (std::string& line : list)
        line = text::printable(line);
    return list;
}

std::string lines(const std::vector<std::string>& list)
{
    std::string text;
    for (const std::string& line : list)
        text += (text.empty() ? "" : "\n") + line;
    return text;
}

} // namespace

ProfileError::ProfileError(std::vector<std::string> list)
    : std::runtime_error(lines(printable(list)))
    , mistakes(printable(std::move(list)))
{
    assert(!mistakes.empty());
}

} // namespace sim
