#include "tools/ctl/traffic/report_text.h"

#include "tools/text/printable.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace ctl {
namespace {

constexpr size_t kBytesWidth = 14;
constexpr size_t kMaxShownBytes = 64;

} // namespace

std::string idsText(uint16_t vendorId, uint16_t productId)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%04x:%04x", unsigned{vendorId}, unsigned{productId});
    return text.data();
}

std::string timeText(std::chrono::microseconds time)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%9.3f", static_cast<double>(time.count()) / 1e6);
    return text.data();
}

std::string bytesText(std::span<const uint8_t> bytes)
{
    std::string text = report::toHex(bytes.first(std::min(bytes.size(), kMaxShownBytes)));
    if (bytes.size() > kMaxShownBytes)
        text += " ... (" + std::to_string(bytes.size()) + " bytes)";
    return text;
}

std::string wordsText(const Words& words, const Output* output)
{
    std::string text;
    for (const auto& word : words) {
        const std::string plain = text::printable(word.text);
        const std::string strong = output ? output->styled(Style::kStrong, plain) : plain;
        const std::string changed = strong == plain ? plain + '*' : strong;
        text += (text.empty() ? "" : ", ") + (word.changed ? changed : plain);
    }
    return text.empty() ? "nothing on" : text;
}

std::string reportText(std::span<const uint8_t> bytes, const Words& words, const Output* output)
{
    std::string text = bytesText(bytes);
    text.resize(std::max(text.size(), kBytesWidth), ' ');
    return text + ' ' + wordsText(words, output);
}

void addWords(Json::Value& json, const Words& words)
{
    json["meaning"] = Json::Value(Json::arrayValue);
    json["changed"] = Json::Value(Json::arrayValue);
    for (const auto& word : words) {
        json["meaning"].append(text::printable(word.text));
        if (word.changed)
            json["changed"].append(text::printable(word.text));
    }
}

} // namespace ctl
