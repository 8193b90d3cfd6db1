#include "tools/ctl/traffic/send_target.h"

#include "tools/ctl/usb/device_words.h"

#include <json/json.h>

namespace ctl {

SendTarget::SendTarget(const std::optional<std::string>& choice)
    : entry(chooseDevice(choice))
    , layout(report::readLayout(entry.descriptor))
    , names(report::UsageNames::load())
{
    if (entry.descriptor.empty())
        throw Failure(kNoAccess,
            idsText(entry) + ": the report descriptor cannot be read"
                + (entry.accessText.empty() ? "" : ": " + entry.accessText));
}

void SendTarget::print(report::ReportKind kind, std::span<const uint8_t> report, bool json) const
{
    Words words = report::ReportWords(layout, names).describe(report::sentReport(kind, report));
    for (auto& word : words)
        word.changed = false; // there is no report before it
    const std::string name = report::kindName(kind);
    if (!json) {
        Output::out().line(name + "  " + reportText(report, words, nullptr));
        return;
    }
    Json::Value object;
    object["kind"] = name;
    object["report"] = report::toHex(report, "");
    addWords(object, words);
    object.removeMember("changed");
    Output::out().jsonLine(object);
}

} // namespace ctl
