#include "sim/profile/mistakes.h"

#include "tools/text/printable.h"
#include "tools/text/utf8.h"

namespace sim {
namespace {

std::string described(const Json::Value& value)
{
    switch (value.type()) {
    case Json::nullValue:
        return "null";
    case Json::arrayValue:
        return "an array of " + std::to_string(value.size());
    case Json::objectValue:
        return "an object";
    case Json::stringValue: {
        const std::string text = value.asString();
        const std::string_view shown = text::firstColumns(text, Mistakes::kShown);
        return '"' + text::printable(shown) + (shown.size() < text.size() ? "...\"" : "\"");
    }
    default:
        return value.asString();
    }
}

} // namespace

void Mistakes::add(const std::string& path, const std::string& expected, const Json::Value& found)
{
    add(path, "expected " + expected + ", found " + described(found));
}

void Mistakes::add(const std::string& path, const std::string& what)
{
    if (list_.size() < kMax)
        list_.push_back(file_ + ": " + (path.empty() ? "" : path + ": ") + what);
}

} // namespace sim
