// The lines of a log that its filter lets through, and the selection among them.
#pragma once

#include "tools/panel/event_log.h"

#include <QSortFilterProxyModel>

namespace panel {

// The selection is a range of line numbers. So it stays on its lines while others come and go, and
// contains those of them that the filter lets through. Lines that the log drops leave it.
class LogView : public QSortFilterProxyModel {
    Q_OBJECT
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY filterChanged)
    Q_PROPERTY(Show show READ show WRITE setShow NOTIFY filterChanged)
    Q_PROPERTY(QString countText READ countText NOTIFY countTextChanged)
    Q_PROPERTY(qint64 firstSelected READ firstSelected NOTIFY selectionChanged)
    Q_PROPERTY(qint64 lastSelected READ lastSelected NOTIFY selectionChanged)
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY selectionChanged)
    Q_PROPERTY(QString currentLine READ currentLine NOTIFY selectionChanged)
public:
    enum Show { kEverything, kInput, kOutput, kOther };
    Q_ENUM(Show)

    // `log` must outlive the object.
    explicit LogView(EventLog& log, QObject* parent = nullptr);

    // Lets through the lines that contain the text, in any case. Bytes match with and without
    // blanks.
    [[nodiscard]] QString filter() const { return filter_; }
    void setFilter(const QString& filter);
    [[nodiscard]] Show show() const { return show_; }
    void setShow(Show show);

    // "1,204 lines", "12 of 1,204 lines"; "latest 20,000 lines" if the oldest are gone.
    [[nodiscard]] QString countText() const;

    // Line numbers; 0 if nothing is selected.
    [[nodiscard]] qint64 firstSelected() const { return std::min(anchor_, current_); }
    [[nodiscard]] qint64 lastSelected() const { return std::max(anchor_, current_); }
    [[nodiscard]] bool hasSelection() const { return current_ != 0; }
    // The whole line that was selected last.
    [[nodiscard]] QString currentLine() const { return currentLine_; }

    // Selects the line of the row, or from the line that was selected first to this one. Rows that
    // do not exist are ignored.
    Q_INVOKABLE void select(int row, bool extend);
    Q_INVOKABLE void selectAll();
    // Selects the line so many rows from the current one, at the ends the first or last. Returns
    // its row; -1 if there are no lines.
    Q_INVOKABLE int moveSelection(int rows, bool extend);

    // The selected lines, each with a line end.
    [[nodiscard]] QString selectedText() const;
    Q_INVOKABLE void copySelection() const; // to the clipboard; nothing if nothing is selected

    // Removes all lines, also those that the filter holds back.
    Q_INVOKABLE void clear();

Q_SIGNALS:
    void filterChanged();
    void countTextChanged();
    void selectionChanged();

protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    [[nodiscard]] qint64 numberAt(int row) const;
    [[nodiscard]] int rowAtOrAfter(qint64 number) const; // rowCount() if there is none
    void dropFromSelection(); // the lines that the log does not have any more
    void setSelection(qint64 anchor, qint64 current, const QString& line);

    EventLog& log_;
    QString filter_;
    Show show_ = kEverything;
    qint64 anchor_ = 0;  // the line that was selected first
    qint64 current_ = 0; // and last
    QString currentLine_;
};

} // namespace panel
