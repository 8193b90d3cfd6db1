#include "tools/ctl/check/junit.h"

#include "tools/text/printable.h"

#include <QXmlStreamWriter>

#include <algorithm>
#include <numeric>

namespace ctl {
namespace {

using Verdict = Outcome::Verdict;

QString xmlText(const std::string& text)
{
    return QString::fromStdString(text::printable(text));
}

QString seconds(std::chrono::milliseconds time)
{
    return QString::number(static_cast<double>(time.count()) / 1e3, 'f', 3);
}

QString detailText(const Outcome& outcome)
{
    std::string lines;
    for (const auto& detail : outcome.details)
        for (const std::string& value : detail.values)
            lines += detail.name + ": " + value + '\n';
    QStringList safe;
    for (const QString& line : QString::fromStdString(lines).split('\n'))
        safe << xmlText(line.toStdString());
    return safe.join('\n');
}

void writeCase(QXmlStreamWriter& xml, const QString& suite, const TestResult& result)
{
    xml.writeStartElement("testcase");
    xml.writeAttribute("classname", suite);
    xml.writeAttribute("name", xmlText(result.name));
    xml.writeAttribute("time", seconds(result.duration));
    const Outcome& outcome = result.outcome;
    if (outcome.verdict == Verdict::kPassed) {
        if (!outcome.details.empty())
            xml.writeTextElement("system-out", detailText(outcome));
    } else {
        xml.writeStartElement(outcome.verdict == Verdict::kFailed ? "failure" : "skipped");
        xml.writeAttribute("message", xmlText(outcome.reason));
        xml.writeCharacters(detailText(outcome));
        xml.writeEndElement();
    }
    xml.writeEndElement();
}

QString countOf(const std::vector<TestResult>& results, Verdict verdict)
{
    return QString::number(std::count_if(results.begin(), results.end(),
        [verdict](const TestResult& result) { return result.outcome.verdict == verdict; }));
}

} // namespace

std::string junitDocument(
    const std::string& suite, const std::vector<TestResult>& results, const std::string& bailOut)
{
    std::vector<TestResult> all = results;
    if (!bailOut.empty())
        all.push_back({"the run is completed", failed(bailOut)});
    const auto total = std::accumulate(all.begin(), all.end(), std::chrono::milliseconds{},
        [](auto sum, const TestResult& result) { return sum + result.duration; });
    const QString name = xmlText(suite);

    QString document;
    QXmlStreamWriter xml(&document);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement("testsuites");
    xml.writeStartElement("testsuite");
    xml.writeAttribute("name", name);
    xml.writeAttribute("tests", QString::number(all.size()));
    xml.writeAttribute("failures", countOf(all, Verdict::kFailed));
    xml.writeAttribute("skipped", countOf(all, Verdict::kSkipped));
    xml.writeAttribute("time", seconds(total));
    for (const TestResult& result : all)
        writeCase(xml, name, result);
    xml.writeEndDocument();
    return document.toStdString();
}

} // namespace ctl
