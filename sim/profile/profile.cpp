#include "sim/profile/profile.h"

#include <cassert>

namespace sim {
namespace {

std::string lines(const std::vector<std::string>& list)
{
    std::string text;
    for (const std::string& line : list)
        text += (text.empty() ? "" : "\n") + line;
    return text;
}

} // namespace

ProfileError::ProfileError(std::vector<std::string> list)
    : std::runtime_error(lines(list))
    , mistakes(std::move(list))
{
    assert(!mistakes.empty());
}

} // namespace sim
