#include "tools/panel/log_recording.h"

#include "report/format/recording.h"

#include <QSaveFile>

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

} // namespace

QByteArray recordingText(const QJsonObject& device, const std::deque<LogEntry>& entries)
{
    std::string text = report::recordingHeader(recordedDevice(device));
    std::chrono::microseconds last{};
    for (const LogEntry& entry : entries) {
        if (entry.kind == Kind::kOther)
            continue;
        last = std::max(last, entry.time); // in a recording times never go back
        report::RecordedReport recorded;
        recorded.time = last;
        recorded.direction = directionOf(entry.kind);
        recorded.bytes = bytesOf(entry.bytes, report::kMaxReportSize);
        if (entry.kind == Kind::kRefusedWrite)
            recorded.failure = "refused by the device";
        text += report::recordingLine(recorded);
    }
    return QByteArray::fromStdString(text);
}

QString saveRecording(
    const QString& path, const QJsonObject& device, const std::deque<LogEntry>& entries)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(recordingText(device, entries)) >= 0
        && file.commit())
        return {};
    return QStringLiteral("cannot write %1: %2").arg(oneLine(path), file.errorString());
}

} // namespace panel
