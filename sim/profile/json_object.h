// Reads JSON objects and collects mistakes in them.
#pragma once

#include "sim/profile/mistakes.h"

#include <json/value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sim {

// A JSON object whose keys are taken one by one. A key that is missing gives the fallback, and so
// does a value that is wrong, which becomes a mistake. Each function states what it takes.
class JsonObject {
public:
    // `value` and `mistakes` must outlive the object. If `value` is no object, that is a mistake,
    // and the object has no keys.
    JsonObject(const Json::Value& value, std::string path, Mistakes& mistakes);

    [[nodiscard]] bool has(const char* key) const { return value_.isMember(key); }
    // The path of a key, "interfaces[1].number".
    [[nodiscard]] std::string pathOf(const char* key) const;
    [[nodiscard]] Mistakes& mistakes() const { return mistakes_; }

    // The value of the key; null if there is none.
    const Json::Value* take(const char* key);

    int64_t takeInteger(const char* key, int64_t minimum, int64_t maximum, int64_t fallback);
    bool takeBoolean(const char* key);
    // One line: printable, of at most so many characters.
    std::string takeLine(const char* key, size_t maxCharacters);
    // Four hexadecimal digits. Without a fallback the key is required, and a mistake gives 0.
    uint16_t takeHexNumber(const char* key, std::optional<uint16_t> fallback = {});

    // One of the words, as its index.
    template <size_t N>
    size_t takeWord(const char* key, const std::string_view (&words)[N], size_t fallback)
    {
        const Json::Value* const value = take(key);
        return value ? wordIn(key, *value, words, words + N, fallback) : fallback;
    }

    // Elements with their paths; a longer array is a mistake.
    using Element = std::pair<const Json::Value*, std::string>;
    std::vector<Element> takeArray(const char* key, size_t minSize, size_t maxSize);

    // To be called when all keys are taken: each other key is a mistake.
    void finish() const;

private:
    size_t wordIn(const char* key, const Json::Value& value, const std::string_view* begin,
        const std::string_view* end, size_t fallback);

    const Json::Value& value_;
    const std::string path_;
    Mistakes& mistakes_;
    std::vector<std::string> known_; // keys that were asked for
};

} // namespace sim
