// The reports of a log as a recording.
#pragma once

#include "tools/panel/log_entry.h"

#include <deque>

namespace panel {

// The text of a recording with the reports of the log; a comment marks where events are missing. No
// value if it would be longer than report::kMaxRecordingSize. `device` is an object of "devices" of
// the bench. Pure.
[[nodiscard]] std::optional<QByteArray> recordingText(
    const QJsonObject& device, const std::deque<LogEntry>& entries);

// Writes it into a file, which appears under its name when it is complete, or into a character
// device. Returns an empty text, or in one line what went wrong; an earlier file of the name is
// unchanged then. Blocks as long as the file system does.
[[nodiscard]] QString saveRecording(
    const QString& path, const QJsonObject& device, const std::deque<LogEntry>& entries);

} // namespace panel
