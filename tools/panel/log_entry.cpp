#include "tools/panel/log_entry.h"

#include <QJsonArray>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace panel {
namespace {

using Kind = LogEntry::Kind;
using std::chrono::microseconds;

// The latest time that is shown: more than 30 years.
constexpr double kMaxSeconds = 1e9;

constexpr int kMaxCount = 65'536; // reports of a flood

Kind kindOf(const QString& event)
{
    if (event == QLatin1String("input"))
        return Kind::kInput;
    if (event == QLatin1String("output"))
        return Kind::kOutput;
    if (event == QLatin1String("feature"))
        return Kind::kFeature;
    if (event == QLatin1String("write-refused"))
        return Kind::kRefusedWrite;
    return Kind::kOther;
}

QString meaningOf(const QJsonObject& event)
{
    QStringList words;
    for (const auto& word : event[QLatin1String("meaning")].toArray())
        words.append(word.toString());
    return words.join(QLatin1String(", "));
}

QString reportText(const LogEntry& entry, const QJsonObject& event)
{
    if (entry.kind == Kind::kRefusedWrite)
        return QStringLiteral("refused");
    QString text = meaningOf(event);
    if (text.isEmpty())
        text = QStringLiteral("no change");
    if (entry.kind == Kind::kFeature)
        text.prepend(QLatin1String("feature report: "));
    if (entry.count > 1)
        text += QStringLiteral(", %1 times").arg(entry.count);
    if (!event[QLatin1String("read")].toBool(true))
        text += QLatin1String(" (lost)");
    return text;
}

QString otherText(const QString& kind, const QJsonObject& event, const QString& label)
{
    if (kind == QLatin1String("lamp"))
        return QStringLiteral("%1 lamp blinks").arg(label);
    if (kind == QLatin1String("fault"))
        return QLatin1String(event[QLatin1String("armed")].toBool() ? "fault on: " : "fault off: ")
            + label;
    if (kind == QLatin1String("note"))
        return event[QLatin1String("text")].toString();
    if (kind == QLatin1String("opened"))
        return QStringLiteral("opened by a program");
    if (kind == QLatin1String("closed"))
        return QStringLiteral("closed by the program");
    if (kind == QLatin1String("plugged"))
        return QStringLiteral("plugged in");
    return QString(kind).replace(QLatin1Char('-'), QLatin1Char(' ')); // "claim refused"
}

// The lines of reports contain the positions of the hook and the lamps, except that one blinks.
bool hasLine(const QString& kind, const QJsonObject& event)
{
    if (kind == QLatin1String("lamp"))
        return event[QLatin1String("state")].toString() == QLatin1String("blink");
    return !kind.isEmpty() && kind != QLatin1String("hook");
}

} // namespace

bool isReport(Kind kind)
{
    return kind != Kind::kOther && kind != Kind::kMissing;
}

std::optional<LogEntry> logEntryFor(const QJsonObject& event, const QString& label)
{
    const QString kind = event[QLatin1String("event")].toString();
    const double seconds = event[QLatin1String("time")].toDouble(-1);
    if (!hasLine(kind, event) || !(seconds >= 0 && seconds <= kMaxSeconds))
        return std::nullopt;
    LogEntry entry;
    entry.time = microseconds(std::llround(seconds * 1e6));
    entry.kind = kindOf(kind);
    entry.bytes = QByteArray::fromHex(event[QLatin1String("report")].toString().toLatin1());
    if (entry.kind == Kind::kInput)
        entry.count = std::clamp(event[QLatin1String("count")].toInt(1), 1, kMaxCount);
    entry.text
        = oneLine(isReport(entry.kind) ? reportText(entry, event) : otherText(kind, event, label));
    return entry;
}

LogEntry missingEvents(microseconds time)
{
    LogEntry entry;
    entry.time = time;
    entry.kind = Kind::kMissing;
    entry.text = QStringLiteral("events are missing here");
    return entry;
}

QString directionText(Kind kind)
{
    switch (kind) {
    case Kind::kInput:
        return QStringLiteral("in");
    case Kind::kOutput:
    case Kind::kFeature:
    case Kind::kRefusedWrite:
        return QStringLiteral("out");
    case Kind::kOther:
    case Kind::kMissing:
        break;
    }
    return {};
}

QString timeText(microseconds time)
{
    return QString::number(static_cast<double>(time.count()) / 1e6, 'f', 6);
}

QString bytesText(const LogEntry& entry)
{
    return QString::fromLatin1(entry.bytes.toHex(' '));
}

QString lineText(const LogEntry& entry)
{
    constexpr int kTimeWidth = 11;
    constexpr int kDirectionWidth = 3;
    constexpr int kBytesWidth = 12;
    const QString line = timeText(entry.time).rightJustified(kTimeWidth) + QLatin1String("  ")
        + directionText(entry.kind).leftJustified(kDirectionWidth) + QLatin1String("  ");
    return entry.bytes.isEmpty()
        ? line + entry.text
        : line + bytesText(entry).leftJustified(kBytesWidth) + QLatin1Char(' ') + entry.text;
}

QString oneLine(QString text)
{
    std::replace_if(
        text.begin(), text.end(),
        [](QChar c) {
            return c.category() == QChar::Other_Control || c.category() == QChar::Other_Format
                || c.category() == QChar::Separator_Line
                || c.category() == QChar::Separator_Paragraph;
        },
        QLatin1Char(' '));
    return text;
}

QString shortened(const QString& text, int maximum)
{
    return text.size() <= maximum ? text : text.left(maximum) + QChar(0x2026);
}

} // namespace panel
