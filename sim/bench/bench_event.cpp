#include "sim/bench/bench_event.h"

#include <json/value.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace sim {
namespace {

using Kind = BenchEvent::Kind;

struct KindName {
    const char* json;
    const char* direction; // in the transcript
    const char* text;      // in the transcript, instead of what is particular to the event
};

constexpr std::array kKindNames{
    KindName{"input", "in ", ""},
    KindName{"output", "out", ""},
    KindName{"feature", "out", ""},
    KindName{"write-refused", "-- ", "write refused"},
    KindName{"open-refused", "-- ", "open refused"},
    KindName{"claim-refused", "-- ", "claim refused"},
    KindName{"detach-refused", "-- ", "detach refused"},
    KindName{"opened", "-- ", "opened"},
    KindName{"closed", "-- ", "closed"},
    KindName{"plugged", "-- ", "plugged in"},
    KindName{"unplugged", "-- ", "unplugged"},
    KindName{"hook", "-- ", ""},
    KindName{"lamp", "", ""},
    KindName{"fault", "-- ", ""},
    KindName{"note", "-- ", ""},
};

const KindName& entryOf(Kind kind)
{
    return kKindNames[static_cast<size_t>(kind)];
}

bool carriesReport(Kind kind)
{
    return kind == Kind::kInput || kind == Kind::kOutput || kind == Kind::kFeature
        || kind == Kind::kWriteRefused;
}

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

// "ring on, mute off"; "no change" if it changed none.
std::string changesOf(const BenchEvent& event)
{
    std::vector<std::string> words;
    for (const LampChange& change : event.changes)
        words.push_back(change.lamp + (change.on ? " on" : " off"));
    return words.empty() ? "no change" : joined(words);
}

// A button's name explains its report. Other reports need their meaning.
std::string causeOf(const BenchEvent& event)
{
    std::string text = event.cause;
    if ((text == BenchEvent::kRawCause || text == BenchEvent::kRecordedCause)
        && !event.meaning.empty())
        text += ": " + joined(event.meaning);
    if (event.count > 1)
        text += ", " + std::to_string(event.count) + " times";
    if (event.delivery == Delivery::kNoListener)
        text += "  (no program listens)";
    else if (event.delivery == Delivery::kQueueFull)
        text += "  (lost: the program reads too slowly)";
    return text;
}

std::string explanation(const BenchEvent& event)
{
    switch (event.kind) {
    case Kind::kInput:
        return causeOf(event);
    case Kind::kOutput:
        return event.interface ? "" : changesOf(event);
    case Kind::kFeature:
        return "feature report" + (event.meaning.empty() ? "" : ": " + joined(event.meaning));
    case Kind::kHook:
        return "hook " + event.state;
    case Kind::kFault:
        return "fault " + event.name + ' ' + event.state;
    case Kind::kNote:
        return event.name;
    default:
        return entryOf(event.kind).text;
    }
}

} // namespace

std::string nameOf(Kind kind)
{
    return entryOf(kind).json;
}

Json::Value toJson(const BenchEvent& event)
{
    Json::Value json;
    json["time"] = static_cast<double>(event.time.count()) / 1e6;
    json["device"] = Json::UInt64{event.device};
    json["event"] = nameOf(event.kind);
    if (event.interface)
        json["interface"] = *event.interface;
    if (carriesReport(event.kind))
        json["report"] = toHex(event.report, "");
    if (carriesReport(event.kind) && event.kind != Kind::kWriteRefused) {
        json["meaning"] = Json::arrayValue;
        for (const std::string& word : event.meaning)
            json["meaning"].append(word);
    }
    if (event.kind == Kind::kInput) {
        json["cause"] = event.cause;
        json["read"] = event.delivery == Delivery::kQueued;
        if (event.count != 1)
            json["count"] = Json::UInt64{event.count};
    } else if (event.kind == Kind::kOutput) {
        json["lamps"] = Json::objectValue;
        for (const LampChange& change : event.changes)
            json["lamps"][change.lamp] = change.on ? "on" : "off";
    } else if (event.kind == Kind::kHook) {
        json["position"] = event.state;
    } else if (event.kind == Kind::kLamp) {
        json["name"] = event.name;
        json["state"] = event.state;
    } else if (event.kind == Kind::kFault) {
        json["name"] = event.name;
        json["armed"] = event.state == "on";
    } else if (event.kind == Kind::kNote) {
        json["text"] = event.name;
    }
    return json;
}

std::string toText(const BenchEvent& event, Numbered numbered)
{
    constexpr size_t kReportColumn = 12;
    const KindName& names = entryOf(event.kind);
    std::string words = explanation(event);
    const bool isKnown = event.kind == Kind::kHook && event.cause == words; // from the line before
    if (*names.direction == '\0' || isKnown)
        return {};
    std::array<char, 32> time{};
    snprintf(time.data(), time.size(), "%11.6f  ", static_cast<double>(event.time.count()) / 1e6);
    std::string line = time.data();
    if (numbered == Numbered::kYes)
        line += std::to_string(event.device) + ":  ";
    line += std::string(names.direction) + "  ";
    if (event.interface)
        words += (words.empty() ? "interface " : "  interface ") + std::to_string(*event.interface);
    if (event.kind == Kind::kWriteRefused)
        return line + words + "  " + toHex(event.report);
    if (!carriesReport(event.kind))
        return line + words;
    std::string bytes = toHex(event.report);
    bytes.resize(std::max(bytes.size(), kReportColumn), ' ');
    return line + bytes + ' ' + words;
}

} // namespace sim
