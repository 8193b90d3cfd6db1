#include "tools/panel/event_log.h"

#include <iterator>

namespace panel {
namespace {

constexpr std::chrono::milliseconds kFrame{30};

size_t sizeOf(const LogEntry& entry)
{
    return sizeof entry + static_cast<size_t>(entry.bytes.size())
        + static_cast<size_t>(entry.text.size()) * sizeof(QChar);
}

} // namespace

EventLog::EventLog(QObject* parent)
    : QAbstractListModel(parent)
{
    timer_.setSingleShot(true);
    timer_.setInterval(kFrame);
    connect(&timer_, &QTimer::timeout, this, &EventLog::flush);
}

void EventLog::append(LogEntry entry)
{
    entry.number = ++numbers_;
    waiting_.push_back(std::move(entry));
    if (waiting_.size() >= kMaxLines)
        flush();
    else if (!timer_.isActive())
        timer_.start();
}

void EventLog::clear()
{
    beginResetModel();
    timer_.stop();
    waiting_.clear();
    entries_.clear();
    size_ = 0;
    cut_ = false;
    endResetModel();
}

void EventLog::flush()
{
    timer_.stop();
    if (waiting_.empty())
        return;
    const int first = rowCount();
    beginInsertRows({}, first, first + static_cast<int>(waiting_.size()) - 1);
    for (LogEntry& entry : waiting_) {
        size_ += sizeOf(entry);
        entries_.push_back(std::move(entry));
    }
    waiting_.clear();
    endInsertRows();
    makeRoom();
}

void EventLog::makeRoom()
{
    size_t lines = 0;
    size_t size = size_;
    while (entries_.size() - lines > kMaxLines || size > kMaxSize)
        size -= sizeOf(entries_[lines++]);
    if (lines == 0)
        return;
    beginRemoveRows({}, 0, static_cast<int>(lines) - 1);
    entries_.erase(entries_.begin(), std::next(entries_.begin(), static_cast<ptrdiff_t>(lines)));
    size_ = size;
    cut_ = true;
    endRemoveRows();
}

int EventLog::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant EventLog::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const LogEntry& entry = entries_[static_cast<size_t>(index.row())];
    switch (role) {
    case kNumber:
        return entry.number;
    case kTime:
        return timeText(entry.time);
    case kDirection:
        return directionText(entry.kind);
    case kBytes:
        return bytesText(entry);
    case kText:
        return entry.text;
    case kLine:
        return lineText(entry);
    default:
        return {};
    }
}

QHash<int, QByteArray> EventLog::roleNames() const
{
    return {{kNumber, "number"}, {kTime, "time"}, {kDirection, "direction"}, {kBytes, "bytes"},
        {kText, "meaning"}, {kLine, "line"}};
}

} // namespace panel
