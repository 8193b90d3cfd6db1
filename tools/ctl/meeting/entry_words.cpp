#include "tools/ctl/meeting/entry_words.h"

#include "tools/ctl/traffic/failure_words.h"
#include "tools/ctl/traffic/report_text.h"
#include "tools/text/printable.h"

#include <json/json.h>

#include <array>

namespace ctl {
namespace {

using Kind = Entry::Kind;

constexpr size_t kNameWidth = 8;

// In the order of Entry::Kind.
constexpr std::array<const char*, 11> kKindNames{"open", "open", "close", "output", "input", "gone",
    "accept", "reject", "mute", "unmute", "log"};

const char* nameOf(Kind kind)
{
    return kKindNames[static_cast<size_t>(kind)];
}

bool isReport(const Entry& entry)
{
    return entry.kind == Kind::kSent || entry.kind == Kind::kReceived;
}

bool hasFailed(const Entry& entry)
{
    return (entry.kind == Kind::kSent && entry.failed) || entry.kind == Kind::kNotOpened;
}

} // namespace

EntryWords::EntryWords(const report::Bytes& descriptor)
    : layout_(report::readLayout(descriptor))
    , names_(report::UsageNames::load())
    , words_(layout_, names_)
{
}

std::string EntryWords::line(const Entry& entry, const Output& output)
{
    std::string name = nameOf(entry.kind);
    name.resize(kNameWidth, ' ');
    std::string line = timeText(sinceFirst(entry)) + "  " + name;
    if (isReport(entry) && !layout_.fields.empty())
        line += reportText(entry.report, words(entry), &output);
    else if (isReport(entry))
        line += bytesText(entry.report);
    else if (isEvent(entry.kind))
        line += "from the device";
    else if (entry.kind == Kind::kLog)
        line += text::printable(entry.text);
    while (line.ends_with(' '))
        line.pop_back();
    return hasFailed(entry) ? line + output.styled(Style::kBad, "  failed: " + failureText(entry))
                            : line;
}

Json::Value EntryWords::json(const Entry& entry)
{
    Json::Value object(Json::objectValue);
    object["time"] = Json::Int64{sinceFirst(entry).count()};
    object["kind"] = nameOf(entry.kind);
    if (isReport(entry)) {
        object["duration"] = Json::Int64{entry.duration.count()};
        object["report"] = report::toHex(entry.report, "");
        if (!layout_.fields.empty())
            addWords(object, words(entry));
    }
    if (entry.kind == Kind::kLog)
        object["text"] = text::printable(entry.text);
    object["error"] = hasFailed(entry) ? Json::Value(std::string(usbFailure(entry.usbError).key))
                                       : Json::Value();
    return object;
}

std::chrono::microseconds EntryWords::sinceFirst(const Entry& entry)
{
    if (!first_)
        first_ = entry.time;
    // The ends of two threads' calls may be observed in another order.
    return std::max(entry.time - *first_, std::chrono::microseconds{});
}

std::vector<report::ReportWords::Word> EntryWords::words(const Entry& entry)
{
    const report::ReportView view = entry.kind == Kind::kSent
        ? report::sentReport(report::ReportKind::kOutput, entry.report)
        : report::wireReport(layout_, report::ReportKind::kInput, entry.report);
    if (!hasFailed(entry))
        return words_.describe(view);
    report::ReportWords unchanged = words_; // the device did not get it
    return unchanged.describe(view);
}

std::string failureText(const Entry& entry)
{
    return std::string(usbFailure(entry.usbError).text);
}

} // namespace ctl
