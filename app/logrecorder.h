// The log list of the window: one line for every transition.
#pragma once

#include <QMutex>
#include <QObject>
#include <QString>
#include <QStringListModel>

class LogRecorder : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringListModel* logListModel READ logListModel NOTIFY sig_logListModelChanged)

public:
    LogRecorder() = default;

    // The process-wide recorder; created by the first call, destroyed at exit.
    static LogRecorder& instance();

    // The lines, oldest first. Owned by the recorder; belongs to the GUI thread.
    QStringListModel* logListModel() { return &m_logListModel; }

    // Adds a line at the end; there is no limit on their number. Any thread, as long as the model's
    // other users keep to that thread, too, or wait.
    void append(const QString& line);

public Q_SLOTS:
    // Empties the list. GUI thread, with no append() on another thread at that moment: it takes no
    // lock.
    void toggleClearLog();

Q_SIGNALS:
    void sig_logListModelChanged();

private:
    QMutex m_lock; // serialises append()
    QStringListModel m_logListModel;
};
