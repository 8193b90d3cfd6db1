#include "tools/ctl/traffic/send_target.h"

#include "tools/ctl/usb/device_words.h"

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

std::string SendTarget::describe(report::ReportKind kind, std::span<const uint8_t> report) const
{
    Words words = report::ReportWords(layout, names).describe(report::sentReport(kind, report));
    for (auto& word : words)
        word.changed = false; // there is no report before it
    const char* const name = kind == report::ReportKind::kFeature ? "feature  " : "output  ";
    return name + reportText(report, words, nullptr);
}

} // namespace ctl
