#include "sim/profile/json_text.h"

#include "sim/profile/profile.h"
#include "sim/profile/utf16.h"
#include "tools/text/printable.h"

#include <json/reader.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace sim {
namespace {

// Follows the nesting of a text from its beginning, as far as it is JSON.
class Nesting {
public:
    explicit Nesting(std::string_view text)
        : text_(text)
    {
    }

    // Goes on up to the position, or only until there are more than `maxDepth` levels or a comment
    // begins.
    void goTo(size_t position, size_t maxDepth)
    {
        while (at_ < std::min(position, text_.size()) && levels_.size() <= maxDepth
            && text_[at_] != '/')
            take(text_[at_++]);
    }

    size_t position() const { return at_; }
    size_t depth() const { return levels_.size(); }

    std::string path() const
    {
        std::string path;
        for (const Level& level : levels_) {
            if (level.isArray)
                path += '[' + std::to_string(level.index) + ']';
            else if (!level.key.empty())
                path += (path.empty() ? "" : ".") + text::printable(level.key);
        }
        return path;
    }

private:
    struct Level {
        bool isArray = false;
        size_t index = 0;
        std::string key = {};
        bool isKeyNext = true;
    };

    void take(char c)
    {
        if (c == '"')
            takeString();
        else if (c == '{' || c == '[')
            levels_.push_back({.isArray = c == '['});
        else if (!levels_.empty())
            takeInLevel(c);
    }

    void takeInLevel(char c)
    {
        Level& level = levels_.back();
        if (c == '}' || c == ']') {
            levels_.pop_back();
        } else if (c == ',') {
            ++level.index;
            level.key.clear();
            level.isKeyNext = true;
        } else if (c == ':') {
            level.isKeyNext = false;
        }
    }

    void takeString()
    {
        const size_t begin = at_;
        while (at_ < text_.size() && text_[at_] != '"')
            at_ += text_[at_] == '\\' ? size_t{2} : size_t{1};
        at_ = std::min(at_, text_.size());
        constexpr size_t kMaxKey = 40;
        if (!levels_.empty() && !levels_.back().isArray && levels_.back().isKeyNext)
            levels_.back().key = text_.substr(begin, std::min(at_ - begin, kMaxKey));
        at_ = std::min(at_ + 1, text_.size()); // the quotation mark
    }

    const std::string_view text_;
    size_t at_ = 0;
    std::vector<Level> levels_;
};

// "FILE:LINE:COLUMN: KEY: ".
std::string place(std::string_view text, size_t position, const std::string& file)
{
    const std::string_view before = text.substr(0, position);
    const auto line = 1 + std::ranges::count(before, '\n');
    const size_t column = before.size() - (before.rfind('\n') + 1) + 1; // npos + 1 is 0
    Nesting nesting(text);
    nesting.goTo(position, kMaxJsonDepth);
    const std::string path = nesting.path();
    return file + ':' + std::to_string(line) + ':' + std::to_string(column) + ": "
        + (path.empty() ? "" : path + ": ");
}

[[noreturn]] void fail(
    std::string_view text, size_t position, const std::string& file, const std::string& what)
{
    throw ProfileError({place(text, position, file) + what});
}

// JsonCpp throws an exception without a place for deep nesting, and takes comments in objects.
void requireLimits(std::string_view text, const std::string& file)
{
    Nesting nesting(text);
    nesting.goTo(text.size(), kMaxJsonDepth);
    if (nesting.depth() > kMaxJsonDepth)
        fail(text, nesting.position() - 1, file,
            "expected at most " + std::to_string(kMaxJsonDepth) + " levels, found more");
    if (nesting.position() < text.size())
        fail(text, nesting.position(), file, "expected JSON, which has no comments, found '/'");
}

// JsonCpp's errors are "* Line 1, Column 5\n  Duplicate key: 'x'\n...".
[[noreturn]] void failWith(
    const std::string& errors, std::string_view text, const std::string& file)
{
    size_t line = 1;
    size_t column = 1;
    std::sscanf(errors.c_str(), "* Line %zu, Column %zu", &line, &column);
    size_t position = 0;
    while (--line > 0 && position < text.size())
        position = std::min(text.find('\n', position), text.size() - 1) + 1;
    position = std::min(position + column - 1, text.size());

    const size_t begin = std::min(errors.find("\n  "), errors.size() - 3) + 3;
    std::string message = errors.substr(begin, errors.find('\n', begin) - begin);
    constexpr std::string_view duplicate = "Duplicate key: '";
    if (message.starts_with(duplicate)) {
        const std::string_view key = std::string_view(message).substr(duplicate.size());
        fail(text, position, file,
            "expected each key once, found " + text::printable(key.substr(0, key.size() - 1))
                + " twice");
    }
    if (message.ends_with('.'))
        message.pop_back();
    fail(text, position, file, "expected JSON, found an error: " + text::printable(message));
}

} // namespace

std::string_view withoutByteOrderMark(std::string_view text)
{
    constexpr std::string_view mark = "\xef\xbb\xbf";
    return text.starts_with(mark) ? text.substr(mark.size()) : text;
}

Json::Value parseJson(std::string_view text, const std::string& file)
{
    text = withoutByteOrderMark(text);
    if (const size_t valid = validLength(text); valid != text.size())
        fail(text, valid, file, "expected UTF-8");
    requireLimits(text, file);
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    std::string errors;
    if (!reader->parse(text.data(), text.data() + text.size(), &value, &errors))
        failWith(errors, text, file);
    return value;
}

} // namespace sim
