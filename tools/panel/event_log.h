// The log of one device, the latest lines of it.
#pragma once

#include "tools/panel/log_entry.h"

#include <QAbstractListModel>
#include <QTimer>

#include <deque>
#include <vector>

namespace panel {

// New lines appear together, every 30 ms, so that a thousand reports a second cost little more than
// one.
class EventLog : public QAbstractListModel {
    Q_OBJECT
public:
    static constexpr size_t kMaxLines = 20'000;
    static constexpr size_t kMaxSize = size_t{32} * 1024 * 1024; // of the texts and bytes, in bytes

    enum Role { kNumber = Qt::UserRole, kTime, kDirection, kBytes, kText, kLine };

    explicit EventLog(QObject* parent = nullptr);

    // Each line gets the next number. The oldest lines go when there are too many.
    void append(LogEntry entry);

    // Removes all lines. Numbers continue.
    void clear();

    // Shows the lines that wait for the next frame.
    void flush();

    [[nodiscard]] const std::deque<LogEntry>& entries() const { return entries_; }

    // Whether lines were removed to make room, since the start or the last clear().
    [[nodiscard]] bool isCut() const { return cut_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    void makeRoom();

    std::deque<LogEntry> entries_;
    std::vector<LogEntry> waiting_;
    QTimer timer_;       // runs while lines wait
    size_t size_ = 0;    // of entries_, in bytes
    qint64 numbers_ = 0; // given so far
    bool cut_ = false;
};

} // namespace panel
