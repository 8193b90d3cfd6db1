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

    // The process-wide recorder. Created by the first call, destroyed at exit.
    static LogRecorder& instance();

    // The lines, oldest first. Owned by the recorder. For the GUI thread only.
    QStringListModel* logListModel() { return &m_logListModel; }

    // Adds a line at the end. The number of lines is not limited.
    //
    // Any thread may call this, but only append() itself is guarded: while a thread other than the
    // GUI thread appends, nothing else may use the model. The model emits its signals while the
    // lock is held, and the lock is not recursive: a slot that is directly connected to the model
    // must not call append().
    void append(const QString& line);

public Q_SLOTS:
    // Empties the list. GUI thread only. Takes no lock, so no other thread may append meanwhile.
    void toggleClearLog();

Q_SIGNALS:
    void sig_logListModelChanged();

private:
    QMutex m_lock; // serialises append()
    QStringListModel m_logListModel;
};
