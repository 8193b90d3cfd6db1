// What Kelprobe's scene needs to be shown, with nothing behind it.
#pragma once

#include <QObject>
#include <QStringListModel>

class PlainValues : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringListModel* deviceListModel MEMBER m_devices CONSTANT)
    Q_PROPERTY(int deviceSelectedIndex MEMBER m_index CONSTANT)
    Q_PROPERTY(QStringListModel* logListModel MEMBER m_lines CONSTANT)
    Q_PROPERTY(bool muteState MEMBER m_off CONSTANT)
    Q_PROPERTY(bool meetingStatus MEMBER m_off CONSTANT)
    Q_PROPERTY(bool ringState MEMBER m_off CONSTANT)

public slots:
    void slt_onSelectDevice(int) { }

private:
    QStringListModel* m_devices = new QStringListModel({QStringLiteral("0b0e:0410")}, this);
    QStringListModel* m_lines = new QStringListModel(this);
    int m_index = 0;
    bool m_off = false;
};
