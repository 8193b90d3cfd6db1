// The properties and slots that Kelprobe's scene uses, without devices, controller or log.
#pragma once

#include <QObject>
#include <QStringListModel>

class PlainValues : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringListModel* deviceListModel MEMBER m_devices CONSTANT)
    Q_PROPERTY(int deviceSelectedIndex MEMBER m_index CONSTANT)
    Q_PROPERTY(QStringListModel* logListModel MEMBER m_lines CONSTANT)
    Q_PROPERTY(bool muteState MEMBER m_muted NOTIFY muteStateChanged)
    Q_PROPERTY(bool meetingStatus MEMBER m_off CONSTANT)
    Q_PROPERTY(bool ringState MEMBER m_off CONSTANT)

public:
    // The minimum for a mute press: the bindings on the mute state, then a line in the list.
    void pressMute()
    {
        m_muted = !m_muted;
        emit muteStateChanged();
        const int row = m_lines->rowCount();
        if (m_lines->insertRow(row))
            m_lines->setData(
                m_lines->index(row), QStringLiteral("0x0000-HID-0x0000# Muted from device"));
    }

public slots:
    void slt_onSelectDevice(int) { }

signals:
    void muteStateChanged();

private:
    QStringListModel* m_devices = new QStringListModel({QStringLiteral("device")}, this);
    QStringListModel* m_lines = new QStringListModel(this);
    int m_index = 0;
    bool m_off = false;
    bool m_muted = false;
};
