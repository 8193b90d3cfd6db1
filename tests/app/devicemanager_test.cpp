// The list of devices, over a simulated bus.
#include "app/devicemanager.h"
#include "app/hidcontroller.h"
#include "app/logrecorder.h"
#include "tests/support/bus_test.h"

#include <climits>

namespace {

class Devices : public BusTest {
protected:
    void TearDown() override
    {
        HidController::instance().selectDevice(QStringLiteral("none"));
        (void)log();
        BusTest::TearDown();
    }

    // The lines since the last time.
    static std::string log()
    {
        const QStringList lines = LogRecorder::instance().logListModel()->stringList();
        LogRecorder::instance().toggleClearLog();
        return lines.join(QStringLiteral("; ")).toStdString();
    }
};

TEST_F(Devices, OneLineEachWithTheStringsThatThereAre)
{
    plug("speakerphone");
    plug("no-telephony"); // has no manufacturer
    sim::UsbDeviceInfo info = sim::findProfile("webcam")->info;
    info.productId = 0x0867;
    info.manufacturer = info.product = u"";
    plug(info);
    info.manufacturer = u"M\u00fcller \U0001F3A4 <b>";
    plug(info);
    const QStringList expected = {
        QStringLiteral("1209:0001 1-1:1.0 Kelprobe Simulated speakerphone"),
        QStringLiteral("1209:0004 1-2:1.0 Simulated headset"),
        QStringLiteral("1209:0867 1-3:1.0 "),
        QStringLiteral("1209:0867 1-4:1.0 M\u00fcller \U0001F3A4 <b> "),
    };
    DeviceManager manager;
    plug("led-per-report"); // too late
    QStringList lines = manager.deviceListModel()->stringList();
    lines.sort(); // hidapi does not promise an order
    EXPECT_EQ(lines, expected);
}

TEST_F(Devices, ChoosingARowSelectsTheIdOfItsLine)
{
    for (const char* profile : {"speakerphone", "webcam", "webcam"})
        plug(profile);
    DeviceManager manager;
    EXPECT_EQ(manager.deviceSelectedIndex(), 0) << "where the window starts";
    HidController::instance().selectDevice(QStringLiteral("none"));
    (void)log();
    for (const int outside : {-1, 3, INT_MAX, INT_MIN})
        manager.slt_onSelectDevice(outside);
    EXPECT_EQ(log(), "");
    QString before = QStringLiteral("none");
    for (int row = 0; row < 3; ++row) {
        const QString line = manager.deviceListModel()->stringList()[row];
        const QString id
            = line.startsWith(u"1209:0003 ") ? "0x1209-HID-0x0003#" : "0x1209-HID-0x0001#";
        manager.slt_onSelectDevice(row);
        const QString change = QStringLiteral("%1 KXHost Destroyed; %2 KXHost Created");
        // Rows of one vendor and product share a host.
        EXPECT_EQ(log(), id == before ? "" : change.arg(before, id).toStdString());
        before = id;
    }
    QMetaObject::invokeMethod(&manager, "slt_onSelectDevice"); // the first, by default
    EXPECT_NE(log(), "");
}

} // namespace
