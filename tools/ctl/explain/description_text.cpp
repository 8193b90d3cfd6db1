#include "tools/ctl/explain/description_text.h"

#include "report/bytes.h"
#include "tools/ctl/cli/output.h"
#include "tools/ctl/explain/phrases.h"
#include "tools/ctl/explain/report_rows.h"
#include "tools/text/printable.h"

#include <algorithm>

namespace ctl {
namespace {

constexpr size_t kMaxDepth = 16;    // deeper items are indented as these
constexpr size_t kMaxItemBytes = 8; // of long items only the beginning is printed
constexpr size_t kBytesWidth = 16;  // of five bytes, and two blanks
constexpr size_t kNameWidth = 16;
constexpr size_t kMaskWidth = 12;
constexpr size_t kLineWidth = 80;

void heading(const std::string& text)
{
    Output& out = Output::out();
    out.line("");
    out.line(out.styled(Style::kStrong, text));
}

// Breaks the text between words. The first line begins with `first`, the others with as many
// blanks.
void printWrapped(const std::string& first, const std::string& text)
{
    std::string line = first;
    bool hasWord = false;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find(' ', at), text.size());
        if (hasWord && line.size() + 1 + end - at > kLineWidth) {
            Output::out().line(line);
            line.assign(first.size(), ' ');
            hasWord = false;
        }
        line += (hasWord ? " " : "") + text.substr(at, end - at);
        hasWord = true;
        at = end + 1;
    }
    Output::out().line(line);
}

std::string itemBytes(const report::Item& item)
{
    const bool isCut = item.bytes.size() > kMaxItemBytes;
    return report::toHex(item.bytes.first(isCut ? kMaxItemBytes : item.bytes.size()))
        + (isCut ? " ..." : "");
}

std::string maskText(std::span<const uint8_t> bytes)
{
    constexpr size_t maxBytes = 16;
    return report::toHex(bytes.first(std::min(bytes.size(), maxBytes)))
        + (bytes.size() > maxBytes ? " ... (" + std::to_string(bytes.size()) + " bytes)" : "");
}

// What is the same for several controls.
struct SharedRemark {
    Remark remark;
    std::vector<std::string> controls;
};

void addRemark(std::vector<SharedRemark>& list, const Remark& remark, const Control& control)
{
    const auto same = std::ranges::find_if(list, [&](const SharedRemark& shared) {
        return shared.remark.word == remark.word && shared.remark.text == remark.text;
    });
    if (same == list.end())
        list.push_back({remark, {control.name}});
    else
        same->controls.emplace_back(control.name);
}

void printRemarks(const ControlMap& map)
{
    std::vector<SharedRemark> reasons;
    std::vector<SharedRemark> notes;
    for (const Control& control : kControls) {
        const ControlEntry& entry = map[control.id];
        if (entry.reason)
            addRemark(reasons, *entry.reason, control);
        for (const Remark& further : entry.furtherReasons)
            addRemark(reasons, {further.word, "Then: " + further.text}, control);
        for (const Remark& note : entry.notes)
            addRemark(notes, note, control);
    }
    for (const auto* const list : {&reasons, &notes})
        for (const SharedRemark& shared : *list) {
            Output::out().line("");
            printWrapped("  ", listed(shared.controls) + " (" + shared.remark.word + "):");
            printWrapped("    ", shared.remark.text);
        }
}

} // namespace

void printItems(const Description& description)
{
    heading("Items");
    for (const report::AnnotatedItem& item : description.items)
        Output::out().line("  " + offsetText(item.item.offset) + "  "
            + padded(itemBytes(item.item), kBytesWidth)
            + std::string(2 * std::min(item.depth, kMaxDepth), ' ') + text::printable(item.text));
}

void printReports(const Description& description)
{
    heading("Reports");
    if (description.layout.reportFields.empty())
        Output::out().line("  none");
    for (const auto& [key, fields] : description.layout.reportFields) {
        Output::out().line("  " + reportTitle(description.layout, key));
        for (const size_t field : fields)
            for (const std::string& row :
                fieldRows(description.layout, description.layout.fields[field], description.names))
                Output::out().line("    " + row);
    }
}

void printProblems(const Description& description)
{
    if (description.layout.problems.empty())
        return;
    heading("Problems of the descriptor");
    for (const report::Problem& problem : description.layout.problems)
        printWrapped("  " + offsetText(problem.offset) + "  ", text::printable(problem.text) + '.');
}

void printControls(const Description& description)
{
    Output& out = Output::out();
    heading("Controls that Kelprobe uses (input masks and output reports)");
    for (const Control& control : kControls) {
        const ControlEntry& entry = description.controls[control.id];
        const std::string name = "  " + padded(control.name, kNameWidth);
        if (entry.report)
            out.line(name + out.styled(Style::kGood, maskText(*entry.report)));
        else
            out.line(
                name + out.styled(Style::kBad, padded("none", kMaskWidth)) + entry.reason->word);
    }
    printRemarks(description.controls);
}

void printMeeting(const Description& description)
{
    heading("In a meeting");
    for (const std::string& sentence : description.meeting)
        printWrapped("  - ", sentence);
    if (description.meeting.empty())
        Output::out().line("  Nothing unusual.");
}

} // namespace ctl
