#include "app/devicetext.h"

namespace {

QString withIds(const QString& format, const hid_device_info& device)
{
    constexpr int width = 4;
    constexpr int base = 16;
    const QLatin1Char fill('0');
    return format.arg(device.vendor_id, width, base, fill)
        .arg(device.product_id, width, base, fill);
}

} // namespace

QString deviceLine(const hid_device_info& device)
{
    const QLatin1Char blank(' ');
    QString line = withIds(QStringLiteral("%1:%2 "), device);
    if (device.path)
        line += QString::fromUtf8(device.path) + blank;
    if (device.manufacturer_string)
        line += QString::fromWCharArray(device.manufacturer_string) + blank;
    if (device.product_string)
        line += QString::fromWCharArray(device.product_string);
    return line;
}

QString deviceId(const hid_device_info& device)
{
    return withIds(QStringLiteral("0x%1-HID-0x%2#"), device);
}
