// A check of JSON values against a JSON Schema, as far as our schema needs it.
#pragma once

#include <json/value.h>

#include <regex.h>

#include <algorithm>
#include <string>

namespace test {

class Schema {
public:
    explicit Schema(Json::Value root)
        : root_(std::move(root))
    {
    }

    bool accepts(const Json::Value& value) const { return accepts(root_, value); }

private:
    bool accepts(const Json::Value& given, const Json::Value& value) const
    {
        const Json::Value& schema = resolve(given);
        const Json::Value& any = schema["anyOf"];
        const auto takes = [&](const Json::Value& one) { return accepts(one, value); };
        const Json::Value& words = schema["enum"];
        return (any.empty() || std::any_of(any.begin(), any.end(), takes))
            && (words.empty() || std::find(words.begin(), words.end(), value) != words.end())
            && hasType(schema["type"].asString(), value) && acceptsText(schema, value)
            && acceptsNumber(schema, value) && acceptsArray(schema, value)
            && acceptsObject(schema, value);
    }

    const Json::Value& resolve(const Json::Value& schema) const
    {
        const std::string name = schema["$ref"].asString();
        return name.empty() ? schema : root_["definitions"][name.substr(name.rfind('/') + 1)];
    }

    static bool hasType(const std::string& type, const Json::Value& value)
    {
        return type.empty() || (type == "object" && value.isObject())
            || (type == "array" && value.isArray()) || (type == "string" && value.isString())
            || (type == "integer" && value.isInt64()) || (type == "boolean" && value.isBool());
    }

    static bool acceptsText(const Json::Value& schema, const Json::Value& value)
    {
        if (!value.isString())
            return true;
        const auto isFirst = [](char c) { return (c & 0xc0) != 0x80; }; // of a character
        const std::string text = value.asString();
        return std::count_if(text.begin(), text.end(), isFirst)
            <= schema.get("maxLength", 1'000'000).asInt64()
            && matches(text, schema.get("pattern", "").asString());
    }

    static bool matches(const std::string& text, const std::string& pattern)
    {
        regex_t compiled;
        if (regcomp(&compiled, pattern.c_str(), REG_EXTENDED | REG_NOSUB) != 0)
            return false;
        const bool found = regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
        regfree(&compiled);
        return found;
    }

    static bool acceptsNumber(const Json::Value& schema, const Json::Value& value)
    {
        return !value.isInt64() || !schema.isMember("minimum")
            || (value.asInt64() >= schema["minimum"].asInt64()
                && value.asInt64() <= schema["maximum"].asInt64());
    }

    bool acceptsArray(const Json::Value& schema, const Json::Value& value) const
    {
        return !value.isArray()
            || (value.size() >= schema.get("minItems", 0).asUInt()
                && value.size() <= schema.get("maxItems", 1'000'000).asUInt()
                && std::all_of(value.begin(), value.end(),
                    [&](const Json::Value& item) { return accepts(schema["items"], item); }));
    }

    bool acceptsObject(const Json::Value& schema, const Json::Value& value) const
    {
        const Json::Value& known = schema["properties"];
        if (!value.isObject() || known.empty())
            return true;
        const Json::Value& required = schema["required"];
        const auto names = value.getMemberNames();
        return std::all_of(required.begin(), required.end(), [&](const Json::Value& name) {
            return value.isMember(name.asString());
        }) && std::all_of(names.begin(), names.end(), [&](const std::string& name) {
            return known.isMember(name) && accepts(known[name], value[name]);
        });
    }

    const Json::Value root_;
};

} // namespace test
