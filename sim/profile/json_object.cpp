#include "sim/profile/json_object.h"

#include "tools/text/printable.h"
#include "tools/text/suggestion.h"
#include "tools/text/utf8.h"

#include <algorithm>
#include <charconv>

namespace sim {
namespace {

const Json::Value kNoObject(Json::objectValue);

std::string quoted(std::string_view word)
{
    return '"' + std::string(word) + '"';
}

} // namespace

JsonObject::JsonObject(const Json::Value& value, std::string path, Mistakes& mistakes)
    : value_(value.isObject() ? value : kNoObject)
    , path_(std::move(path))
    , mistakes_(mistakes)
{
    if (!value.isObject())
        mistakes_.add(path_, "an object", value);
}

std::string JsonObject::pathOf(const char* key) const
{
    return path_.empty() ? key : path_ + '.' + key;
}

const Json::Value* JsonObject::take(const char* key)
{
    known_.emplace_back(key);
    return has(key) ? &value_[key] : nullptr;
}

int64_t JsonObject::takeInteger(const char* key, int64_t minimum, int64_t maximum, int64_t fallback)
{
    const Json::Value* const value = take(key);
    if (!value)
        return fallback;
    if (value->isInt64() && value->asInt64() >= minimum && value->asInt64() <= maximum)
        return value->asInt64();
    mistakes_.add(pathOf(key),
        "a whole number from " + std::to_string(minimum) + " to " + std::to_string(maximum),
        *value);
    return fallback;
}

bool JsonObject::takeBoolean(const char* key)
{
    const Json::Value* const value = take(key);
    if (value && !value->isBool())
        mistakes_.add(pathOf(key), "true or false", *value);
    return value && value->isBool() && value->asBool();
}

std::string JsonObject::takeLine(const char* key, size_t maxCharacters)
{
    const Json::Value* const value = take(key);
    if (!value)
        return {};
    std::string text = value->isString() ? value->asString() : "";
    const auto isFirst = [](char c) { return (c & 0xc0) != 0x80; }; // byte of a character
    const auto characters = static_cast<size_t>(std::ranges::count_if(text, isFirst));
    if (value->isString() && characters <= maxCharacters && text::printable(text) == text)
        return text;
    mistakes_.add(pathOf(key),
        "one line of at most " + std::to_string(maxCharacters) + " characters", *value);
    return {};
}

uint16_t JsonObject::takeHexNumber(const char* key, std::optional<uint16_t> fallback)
{
    static constexpr const char* kExpected = "four hexadecimal digits in quotation marks";
    const Json::Value* const value = take(key);
    if (!value) {
        if (!fallback)
            mistakes_.add(
                pathOf(key), std::string("expected ") + kExpected + ", found no such key");
        return fallback.value_or(0);
    }
    uint16_t number = 0;
    const std::string text = value->isString() ? value->asString() : "";
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    if (text.size() == 4 && result.ec == std::errc() && result.ptr == text.data() + text.size())
        return number;
    mistakes_.add(pathOf(key), kExpected, *value);
    return fallback.value_or(0);
}

size_t JsonObject::wordIn(const char* key, const Json::Value& value, const std::string_view* begin,
    const std::string_view* end, size_t fallback)
{
    const std::string_view* const found
        = value.isString() ? std::find(begin, end, value.asString()) : end;
    if (found != end)
        return static_cast<size_t>(found - begin);
    std::string expected;
    for (const std::string_view* word = begin; word != end; ++word)
        expected += (word == begin ? "" : word + 1 == end ? " or " : ", ") + quoted(*word);
    mistakes_.add(pathOf(key), expected, value);
    return fallback;
}

std::vector<JsonObject::Element> JsonObject::takeArray(
    const char* key, size_t minSize, size_t maxSize)
{
    const Json::Value* const value = take(key);
    std::vector<Element> elements;
    const bool isArray = value && value->isArray();
    if (value && (!isArray || value->size() < minSize || value->size() > maxSize)) {
        mistakes_.add(pathOf(key),
            "an array of " + std::to_string(minSize) + " to " + std::to_string(maxSize), *value);
        return elements;
    }
    for (Json::ArrayIndex i = 0; isArray && i < value->size(); ++i)
        elements.emplace_back(&(*value)[i], pathOf(key) + '[' + std::to_string(i) + ']');
    return elements;
}

void JsonObject::finish() const
{
    const std::vector<std::string_view> known(known_.begin(), known_.end());
    for (const std::string& key : value_.getMemberNames()) {
        if (std::ranges::find(known_, key) != known_.end())
            continue;
        const std::string_view nearest = text::nearest(key, known);
        const std::string shown = text::printable(text::firstColumns(key, Mistakes::kShown));
        std::string expected;
        for (const std::string_view name : known)
            expected += (expected.empty() ? "" : ", ") + std::string(name);
        mistakes_.add(path_.empty() ? shown : path_ + '.' + shown,
            nearest.empty() ? "unknown key; expected one of " + expected
                            : "unknown key; did you mean " + std::string(nearest) + '?');
    }
}

} // namespace sim
