#include "app/logrecorder.h"

#include <QMutexLocker>

LogRecorder& LogRecorder::instance()
{
    static LogRecorder recorder;
    return recorder;
}

void LogRecorder::append(const QString& line)
{
    const QMutexLocker locker(&m_lock);
    if (m_logListModel.insertRow(m_logListModel.rowCount()))
        m_logListModel.setData(m_logListModel.index(m_logListModel.rowCount() - 1), line);
}

void LogRecorder::toggleClearLog()
{
    m_logListModel.setStringList({});
}
