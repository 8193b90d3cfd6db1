#include "tools/panel/log_view.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLocale>

#include <algorithm>

namespace panel {
namespace {

bool isShown(LogView::Show show, LogEntry::Kind kind)
{
    switch (show) {
    case LogView::kEverything:
        break;
    case LogView::kInput:
        return kind == LogEntry::Kind::kInput;
    case LogView::kOutput:
        return kind != LogEntry::Kind::kInput && isReport(kind);
    case LogView::kOther:
        return !isReport(kind);
    }
    return true;
}

bool contains(const LogEntry& entry, const QString& text)
{
    return lineText(entry).contains(text, Qt::CaseInsensitive)
        || QString::fromLatin1(entry.bytes.toHex()).contains(text, Qt::CaseInsensitive);
}

} // namespace

LogView::LogView(EventLog& log, QObject* parent)
    : QSortFilterProxyModel(parent)
    , log_(log)
{
    setSourceModel(&log);
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(&log, signal, this, &LogView::countTextChanged);
    connect(&log, &QAbstractItemModel::rowsRemoved, this, &LogView::dropFromSelection);
    connect(&log, &QAbstractItemModel::modelReset, this, &LogView::countTextChanged);
    connect(this, &LogView::filterChanged, this, &LogView::countTextChanged);
}

void LogView::setFilter(const QString& filter)
{
    if (filter == filter_)
        return;
    filter_ = filter;
    invalidateFilter();
    Q_EMIT filterChanged();
}

void LogView::setShow(Show show)
{
    if (show == show_)
        return;
    show_ = show;
    invalidateFilter();
    Q_EMIT filterChanged();
}

QString LogView::countText() const
{
    const QLocale locale(QLocale::English);
    const int all = log_.rowCount();
    QString total = locale.toString(all) + QLatin1String(all == 1 ? " line" : " lines");
    if (log_.isCut())
        total.prepend(QLatin1String("latest "));
    return rowCount() == all ? total
                             : QStringLiteral("%1 of %2").arg(locale.toString(rowCount()), total);
}

void LogView::select(int row, bool extend)
{
    if (row < 0 || row >= rowCount())
        return;
    const qint64 number = numberAt(row);
    setSelection(extend && hasSelection() ? anchor_ : number, number,
        index(row, 0).data(EventLog::kLine).toString());
}

void LogView::selectAll()
{
    if (rowCount() == 0)
        return;
    select(0, false);
    select(rowCount() - 1, true);
}

int LogView::moveSelection(int rows, bool extend)
{
    if (rowCount() == 0)
        return -1;
    const int from = hasSelection() ? rowAtOrAfter(current_) : rowCount();
    const int to = std::clamp(from + rows, 0, rowCount() - 1);
    select(to, extend);
    return to;
}

QString LogView::selectedText() const
{
    QString text;
    for (int row = rowAtOrAfter(firstSelected());
         row < rowCount() && numberAt(row) <= lastSelected(); ++row)
        text += index(row, 0).data(EventLog::kLine).toString() + QLatin1Char('\n');
    return text;
}

void LogView::copySelection() const
{
    if (const QString text = selectedText(); !text.isEmpty())
        QGuiApplication::clipboard()->setText(text);
}

void LogView::clear()
{
    log_.clear();
    setSelection(0, 0, {});
}

bool LogView::filterAcceptsRow(int row, const QModelIndex&) const
{
    const LogEntry& entry = log_.entries()[static_cast<size_t>(row)];
    return isShown(show_, entry.kind) && (filter_.isEmpty() || contains(entry, filter_));
}

qint64 LogView::numberAt(int row) const
{
    return index(row, 0).data(EventLog::kNumber).toLongLong();
}

// The rows are in the order of their numbers.
int LogView::rowAtOrAfter(qint64 number) const
{
    int first = 0;
    int count = rowCount();
    while (count > 0) {
        const int half = count / 2;
        if (numberAt(first + half) < number) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return first;
}

void LogView::dropFromSelection()
{
    if (!hasSelection() || log_.rowCount() == 0)
        return;
    const LogEntry& first = log_.entries().front();
    if (lastSelected() < first.number)
        setSelection(0, 0, {});
    else if (current_ < first.number)
        setSelection(anchor_, first.number, lineText(first));
    else if (anchor_ < first.number)
        setSelection(first.number, current_, currentLine_);
}

void LogView::setSelection(qint64 anchor, qint64 current, const QString& line)
{
    anchor_ = anchor;
    current_ = current;
    currentLine_ = line;
    Q_EMIT selectionChanged();
}

} // namespace panel
