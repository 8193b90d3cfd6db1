#include "tools/panel/log_recording.h"

#include "report/format/recording.h"

#include <QFile>
#include <QSaveFile>
#include <sys/stat.h>

#include <algorithm>

namespace panel {
namespace {

using Kind = LogEntry::Kind;
using Direction = report::RecordedReport::Direction;

report::Bytes bytesOf(const QByteArray& bytes, size_t maximum)
{
    const auto size = std::min(static_cast<size_t>(bytes.size()), maximum);
    return {bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)};
}

uint16_t idOf(const QJsonObject& device, const char* key)
{
    constexpr int kHexadecimal = 16;
    return device[QLatin1String(key)].toString().toUShort(nullptr, kHexadecimal);
}

report::RecordedDevice recordedDevice(const QJsonObject& device)
{
    const auto text = [&](const char* key) { return device[QLatin1String(key)].toString(); };
    report::RecordedDevice recorded;
    recorded.name
        = (text("manufacturer") + QLatin1Char(' ') + text("product")).simplified().toStdString();
    recorded.physicalPath
        = "kelprobe-sim/" + std::to_string(device[QLatin1String("number")].toInt());
    recorded.vendorId = idOf(device, "vendorId");
    recorded.productId = idOf(device, "productId");
    recorded.descriptor = bytesOf(
        QByteArray::fromHex(text("reportDescriptor").toLatin1()), report::kMaxDescriptorSize);
    return recorded;
}

Direction directionOf(Kind kind)
{
    if (kind == Kind::kInput)
        return Direction::kInput;
    return kind == Kind::kFeature ? Direction::kFeature : Direction::kOutput;
}

// Empty if the recording has no line for the entry.
std::string lineFor(const LogEntry& entry, std::chrono::microseconds time)
{
    if (entry.kind == Kind::kMissing)
        return "# " + entry.text.toStdString() + '\n';
    if (!isReport(entry.kind))
        return {};
    report::RecordedReport recorded;
    recorded.time = time;
    recorded.direction = directionOf(entry.kind);
    recorded.bytes = bytesOf(entry.bytes, report::kMaxReportSize);
    if (entry.kind == Kind::kRefusedWrite)
        recorded.failure = "refused by the device";
    return report::recordingLine(recorded);
}

} // namespace

std::optional<QByteArray> recordingText(
    const QJsonObject& device, const std::deque<LogEntry>& entries)
{
    std::string text = report::recordingHeader(recordedDevice(device));
    std::chrono::microseconds last{};
    for (const LogEntry& entry : entries) {
        last = std::max(last, entry.time); // in a recording times never go back
        const std::string line = lineFor(entry, last);
        if (text.size() + line.size() * static_cast<size_t>(entry.count)
            > report::kMaxRecordingSize)
            return std::nullopt;
        for (int i = 0; i < entry.count; ++i)
            text += line;
    }
    return QByteArray::fromStdString(text);
}

QString saveRecording(
    const QString& path, const QJsonObject& device, const std::deque<LogEntry>& entries)
{
    const QString failure = QStringLiteral("cannot write %1: ").arg(oneLine(path));
    const auto text = recordingText(device, entries);
    if (!text)
        return failure + QStringLiteral("it would have more than 64 MiB");
    struct stat status = {};
    const bool exists = stat(QFile::encodeName(path).constData(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode) && !S_ISCHR(status.st_mode))
        return failure + QStringLiteral("it is not a file"); // a pipe could block
    if (exists && S_ISCHR(status.st_mode)) {
        QFile file(path); // QSaveFile would replace the device by a file
        const bool written = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
            && file.write(*text) == text->size();
        return written ? QString() : failure + file.errorString();
    }
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(*text) >= 0 && file.commit())
        return {};
    return failure + file.errorString();
}

} // namespace panel
