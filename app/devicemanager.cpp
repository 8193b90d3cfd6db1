#include "app/devicemanager.h"

#include "app/devicetext.h"
#include "app/hidcontroller.h"

DeviceManager::DeviceManager()
    : m_enumeration(hid_enumerate(0, 0)) // any vendor, any product
{
    for (const hid_device_info* entry = m_enumeration.get(); entry; entry = entry->next) {
        m_deviceTexts.append(deviceLine(*entry));
        m_entries.push_back(entry);
    }
    m_listModel.setStringList(m_deviceTexts);
}

DeviceManager& DeviceManager::instance()
{
    static DeviceManager manager;
    return manager;
}

void DeviceManager::setDeviceSelectedIndex(int index)
{
    if (m_deviceSelectedIndex == index)
        return;
    m_deviceSelectedIndex = index;
    Q_EMIT sig_deviceSelectedIndexChanged();
}

void DeviceManager::slt_onSelectDevice(int index)
{
    if (index < 0 || static_cast<size_t>(index) >= m_entries.size())
        return;
    HidController::instance().selectDevice(deviceId(*m_entries[static_cast<size_t>(index)]));
}
