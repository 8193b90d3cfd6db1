// A line of the log: something that happened to a device.
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <chrono>
#include <optional>

namespace panel {

struct LogEntry {
    enum class Kind : uint8_t { kInput, kOutput, kFeature, kRefusedWrite, kOther, kMissing };

    qint64 number = 0;                // in the order of the log, from 1; the log sets it
    std::chrono::microseconds time{}; // since the bench started
    Kind kind = Kind::kOther;
    QByteArray bytes; // of the report. Input: as on the wire; others: report id first
    int count = 1;    // of equal reports, at least 1
    QString text;     // in one line
};

[[nodiscard]] bool isReport(LogEntry::Kind kind);

// No value for an event that another line contains already, or that is not valid. `label` is that
// of the lamp or fault which the event names. Pure, as are all functions here.
[[nodiscard]] std::optional<LogEntry> logEntryFor(const QJsonObject& event, const QString& label);

// Stands for events that were not received, at the time of the latest one before them.
[[nodiscard]] LogEntry missingEvents(std::chrono::microseconds time);

// "in", "out", or an empty text.
[[nodiscard]] QString directionText(LogEntry::Kind kind);
[[nodiscard]] QString timeText(std::chrono::microseconds time); // "1.020304"
[[nodiscard]] QString bytesText(const LogEntry& entry);         // "03 01 00"

// "   1.020304  in   03 01 00     Hook Switch on", as the bench prints it.
[[nodiscard]] QString lineText(const LogEntry& entry);

// `text` with a blank in place of each control, format and line separator character: text from a
// device cannot begin a line or change the direction of writing.
[[nodiscard]] QString oneLine(QString text);

// Of a longer text the first `maximum` characters and an ellipsis.
[[nodiscard]] QString shortened(const QString& text, int maximum);

} // namespace panel
