// The HID devices that were connected when the program started, and the user's choice among them.
#pragma once

#include <QObject>
#include <QStringList>
#include <QStringListModel>

#include <hidapi/hidapi.h>

#include <memory>
#include <vector>

// Everything here belongs to the GUI thread.
class DeviceManager : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringListModel* deviceListModel READ deviceListModel NOTIFY sig_deviceModelChanged)
    Q_PROPERTY(int deviceSelectedIndex READ deviceSelectedIndex WRITE setDeviceSelectedIndex NOTIFY
            sig_deviceSelectedIndexChanged)

public:
    // Asks hidapi for every HID device, once; a failure looks like no device. Blocks meanwhile
    // (milliseconds a device).
    DeviceManager();

    // The process-wide manager; created by the first call, destroyed at exit.
    static DeviceManager& instance();

    // A line for each device, in hidapi's order. Owned by the manager.
    QStringListModel* deviceListModel() { return &m_listModel; }

    // The row that the window starts with; slt_onSelectDevice() leaves it alone.
    int deviceSelectedIndex() const { return m_deviceSelectedIndex; }
    void setDeviceSelectedIndex(int index);

public Q_SLOTS:
    // Makes the device of row `index` the controller's; an index outside the list is ignored.
    void slt_onSelectDevice(int index = 0);

Q_SIGNALS:
    void sig_deviceModelChanged();
    void sig_deviceSelectedIndexChanged();

private:
    struct FreeEnumeration {
        void operator()(hid_device_info* list) const { hid_free_enumeration(list); }
    };

    // Destroyed from the last to the first: the entries before the list they point into.
    QStringListModel m_listModel; // holds m_deviceTexts
    int m_deviceSelectedIndex = 0;
    std::unique_ptr<hid_device_info, FreeEnumeration> m_enumeration;
    std::vector<const hid_device_info*> m_entries; // parallel to m_deviceTexts
    QStringList m_deviceTexts;
};
