#include "tools/ctl/check/tap.h"

#include "tools/text/printable.h"

namespace ctl {
namespace {

// Text in a test line: a number sign begins a directive, a backslash an escape.
std::string lineText(const std::string& text)
{
    std::string result;
    for (const char c : text::printable(text)) {
        if (c == '#' || c == '\\')
            result += '\\';
        result += c;
    }
    return result;
}

std::string yamlText(const std::string& text)
{
    std::string result = "\"";
    for (const char c : text::printable(text)) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    return result + '"';
}

std::string yamlBlock(const Outcome& outcome)
{
    std::string block = "\n  ---";
    if (!outcome.reason.empty())
        block += "\n  message: " + yamlText(outcome.reason);
    for (const auto& detail : outcome.details) {
        block += "\n  " + detail.name + (detail.values.empty() ? ": []" : ":");
        for (const std::string& value : detail.values)
            block += "\n    - " + yamlText(value);
    }
    return block + "\n  ...";
}

} // namespace

std::string tapHeader(size_t tests)
{
    return "TAP version 14\n1.." + std::to_string(tests);
}

std::string tapResult(size_t number, const TestResult& result)
{
    const Outcome& outcome = result.outcome;
    const bool isFailed = outcome.verdict == Outcome::Verdict::kFailed;
    std::string lines
        = (isFailed ? "not ok " : "ok ") + std::to_string(number) + " - " + lineText(result.name);
    if (outcome.verdict == Outcome::Verdict::kSkipped)
        return lines + " # SKIP " + lineText(outcome.reason);
    return isFailed || !outcome.details.empty() ? lines + yamlBlock(outcome) : lines;
}

std::string tapBailOut(const std::string& reason)
{
    return "Bail out! " + lineText(reason);
}

} // namespace ctl
