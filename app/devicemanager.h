// The list of the HID devices that were connected when the program started.
#pragma once

#include <QObject>
#include <QStringList>
#include <QStringListModel>

#include <hidapi/hidapi.h>

#include <memory>
#include <vector>

// All operations belong to the GUI thread.
class DeviceManager : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringListModel* deviceListModel READ deviceListModel NOTIFY sig_deviceModelChanged)
    Q_PROPERTY(int deviceSelectedIndex READ deviceSelectedIndex WRITE setDeviceSelectedIndex NOTIFY
            sig_deviceSelectedIndexChanged)

public:
    // Enumerates all HID devices, once. If hidapi fails, the list is empty. Blocks for some
    // milliseconds per device. If a device does not respond, hidapi waits up to 1 s for each
    // request.
    DeviceManager();

    // The process-wide manager. Created by the first call, destroyed at exit.
    static DeviceManager& instance();

    // One line per device, in hidapi's order. Owned by the manager, never changes.
    QStringListModel* deviceListModel() { return &m_listModel; }

    // The row that the window starts with. slt_onSelectDevice() does not change it.
    int deviceSelectedIndex() const { return m_deviceSelectedIndex; }
    void setDeviceSelectedIndex(int index);

public Q_SLOTS:
    // Passes the id of the device in row `index` to HidController::selectDevice(), which blocks.
    // Ignores an index outside the list: for an empty list the combo box passes -1.
    void slt_onSelectDevice(int index = 0);

Q_SIGNALS:
    void sig_deviceModelChanged();
    void sig_deviceSelectedIndexChanged();

private:
    struct FreeEnumeration {
        void operator()(hid_device_info* list) const { hid_free_enumeration(list); }
    };

    QStringListModel m_listModel; // holds m_deviceTexts
    int m_deviceSelectedIndex = 0;
    std::unique_ptr<hid_device_info, FreeEnumeration> m_enumeration;
    std::vector<const hid_device_info*> m_entries; // point into m_enumeration, one per device text
    QStringList m_deviceTexts;
};
