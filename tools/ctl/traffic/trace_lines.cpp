#include "tools/ctl/traffic/trace_lines.h"

#include "tools/ctl/traffic/failure_words.h"
#include "tools/text/printable.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace ctl {
namespace {

constexpr size_t kNameWidth = 13;
constexpr size_t kHexWidth = 14;
constexpr size_t kMaxShownBytes = 64;

std::string nameOf(hid_call_kind kind)
{
    switch (kind) {
    case HID_CALL_OPEN:
        return "open";
    case HID_CALL_DESCRIPTOR:
        return "descriptor";
    case HID_CALL_CLOSE:
        return "close";
    case HID_CALL_WRITE:
        return "output";
    case HID_CALL_READ:
        return "input";
    case HID_CALL_SEND_FEATURE:
        return "set feature";
    case HID_CALL_GET_FEATURE:
        return "get feature";
    case HID_CALL_GET_INPUT:
        return "get input";
    }
    return "";
}

bool isTransfer(hid_call_kind kind)
{
    return kind != HID_CALL_OPEN && kind != HID_CALL_DESCRIPTOR && kind != HID_CALL_CLOSE;
}

std::string padded(std::string text, size_t width)
{
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string shownBytes(const report::Bytes& bytes)
{
    const std::span<const uint8_t> all(bytes);
    std::string text = report::toHex(all.first(std::min(all.size(), kMaxShownBytes)));
    if (all.size() > kMaxShownBytes)
        text += " ... (" + std::to_string(all.size()) + " bytes)";
    return text;
}

bool hasMeaning(const TracedCall& traced)
{
    return isTransfer(traced.call.kind) && traced.device && !traced.device->descriptor().empty()
        && !traced.call.data.empty();
}

// What follows the name of the call.
std::string detail(const TracedCall& traced, const Output* output)
{
    const Call& call = traced.call;
    if (call.kind == HID_CALL_OPEN)
        return idsText(call.vendorId, call.productId) + ' ' + text::printable(call.path);
    if (call.kind == HID_CALL_DESCRIPTOR)
        return "cannot be read, so reports have no meaning";
    const std::string bytes = shownBytes(call.data);
    if (!hasMeaning(traced))
        return bytes;
    return padded(bytes, kHexWidth) + ' ' + wordsText(traced.words, output);
}

std::string seconds(std::chrono::microseconds time)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%9.3f", static_cast<double>(time.count()) / 1e6);
    return text.data();
}

Json::Value textsOf(const TracedCall& traced, bool onlyChanged)
{
    Json::Value texts(Json::arrayValue);
    for (const auto& word : traced.words)
        if (word.changed || !onlyChanged)
            texts.append(text::printable(word.text));
    return texts;
}

void addReport(Json::Value& json, const TracedCall& traced)
{
    json["report"] = report::toHex(traced.call.data, "");
    if (!hasMeaning(traced))
        return;
    json["meaning"] = textsOf(traced, false);
    json["changed"] = textsOf(traced, true);
}

} // namespace

std::string idsText(uint16_t vendorId, uint16_t productId)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%04x:%04x", unsigned{vendorId}, unsigned{productId});
    return text.data();
}

std::string wordsText(const std::vector<report::ReportWords::Word>& words, const Output* output)
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

std::string traceLine(const TracedCall& traced, const Output* output)
{
    const Call& call = traced.call;
    if (call.kind == HID_CALL_DESCRIPTOR && !call.data.empty())
        return {};
    std::string line = seconds(traced.time) + "  ";
    if (traced.otherProcess)
        line += '[' + std::to_string(call.process) + ' ' + text::printable(traced.processName)
            + "]  ";
    line += traced.device ? '#' + std::to_string(traced.device->number) : "#?";
    line += "  " + padded(nameOf(call.kind), kNameWidth) + detail(traced, output);
    while (line.ends_with(' '))
        line.pop_back();
    if (call.result < 0) {
        const std::string failed = "  failed: " + std::string(failureOf(call).text);
        line += output ? output->styled(Style::kBad, failed) : failed;
    }
    return line;
}

Json::Value traceJson(const TracedCall& traced)
{
    const Call& call = traced.call;
    Json::Value json;
    json["time"] = Json::Int64{traced.time.count()};
    json["duration"] = Json::Int64{call.duration.count()};
    json["process"] = call.process;
    json["processName"] = text::printable(traced.processName);
    json["device"]
        = traced.device ? Json::Value(Json::UInt64{traced.device->number}) : Json::Value();
    std::string name = nameOf(call.kind);
    std::replace(name.begin(), name.end(), ' ', '-');
    json["call"] = name;
    if (call.kind == HID_CALL_OPEN) {
        json["ids"] = idsText(call.vendorId, call.productId);
        json["path"] = text::printable(call.path);
    } else if (call.kind == HID_CALL_DESCRIPTOR) {
        json["descriptor"] = report::toHex(call.data, "");
    } else if (isTransfer(call.kind)) {
        addReport(json, traced);
    }
    json["result"] = call.result;
    json["error"] = call.result < 0 ? Json::Value(std::string(failureOf(call).key)) : Json::Value();
    return json;
}

} // namespace ctl
