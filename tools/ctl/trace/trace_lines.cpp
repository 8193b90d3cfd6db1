#include "tools/ctl/trace/trace_lines.h"

#include "tools/ctl/traffic/failure_words.h"
#include "tools/text/printable.h"

#include <algorithm>

namespace ctl {
namespace {

constexpr size_t kNameWidth = 13;

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

bool isUnderstood(const TracedCall& traced)
{
    return traced.device && !traced.device->descriptor().empty();
}

bool hasMeaning(const TracedCall& traced)
{
    return isTransfer(traced.call.kind) && isUnderstood(traced) && !traced.call.data.empty();
}

// Of the device that was opened, or that should have been.
std::string idsOf(const TracedCall& traced)
{
    const TrafficDevice* const device = traced.device;
    return device ? idsText(device->vendorId, device->productId)
                  : idsText(traced.call.vendorId, traced.call.productId);
}

// What follows the name of the call.
std::string detail(const TracedCall& traced, const Output* output)
{
    const Call& call = traced.call;
    if (call.kind == HID_CALL_OPEN)
        return idsOf(traced) + ' ' + text::printable(call.path);
    if (call.kind == HID_CALL_DESCRIPTOR)
        return "cannot be read, so reports have no meaning";
    return hasMeaning(traced) ? reportText(call.data, traced.words, output) : bytesText(call.data);
}

void addReport(Json::Value& json, const TracedCall& traced)
{
    json["report"] = report::toHex(traced.call.data, "");
    if (hasMeaning(traced))
        addWords(json, traced.words);
}

} // namespace

std::string traceLine(const TracedCall& traced, const Output* output)
{
    const Call& call = traced.call;
    if (call.kind == HID_CALL_DESCRIPTOR && isUnderstood(traced))
        return {};
    std::string line = timeText(traced.time) + "  ";
    if (traced.otherProcess)
        line += '[' + std::to_string(call.process) + ' ' + text::printable(call.program) + "]  ";
    line += traced.device ? '#' + std::to_string(traced.device->number) : "#?";
    std::string name = nameOf(call.kind);
    name.resize(kNameWidth, ' ');
    line += "  " + name + detail(traced, output);
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
    json["program"] = text::printable(call.program);
    json["device"]
        = traced.device ? Json::Value(Json::UInt64{traced.device->number}) : Json::Value();
    std::string name = nameOf(call.kind);
    std::replace(name.begin(), name.end(), ' ', '-');
    json["call"] = name;
    if (call.kind == HID_CALL_OPEN) {
        json["ids"] = idsOf(traced);
        json["path"] = text::printable(call.path);
    } else if (call.kind == HID_CALL_DESCRIPTOR) {
        json["descriptor"]
            = isUnderstood(traced) ? report::toHex(traced.device->descriptor(), "") : "";
    } else if (isTransfer(call.kind)) {
        addReport(json, traced);
    }
    json["result"] = call.result;
    json["error"] = call.result < 0 ? Json::Value(std::string(failureOf(call).key)) : Json::Value();
    return json;
}

} // namespace ctl
