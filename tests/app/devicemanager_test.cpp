// The list of devices, over a simulated bus.
#include "devicemanager.h"

#include "bus_test.h"
#include "hidcontroller.h"
#include "logrecorder.h"

#include <climits>
#include <set>

namespace {

class Devices : public BusTest {
protected:
    using Lines = std::multiset<std::string>; // hidapi does not promise an order

    void SetUp() override
    {
        BusTest::SetUp();
        closeDevice();
        (void)log();
    }
    void TearDown() override
    {
        closeDevice();
        BusTest::TearDown();
    }

    static void closeDevice() { HidController::instance().selectDevice(QStringLiteral("none")); }

    static Lines lines(DeviceManager& manager)
    {
        Lines lines;
        for (const QString& line : manager.deviceListModel()->stringList())
            lines.insert(line.toStdString());
        return lines;
    }

    static std::string log()
    {
        const QStringList lines = LogRecorder::instance().logListModel()->stringList();
        LogRecorder::instance().toggleClearLog();
        return lines.join(QStringLiteral("; ")).toStdString();
    }
};

TEST_F(Devices, OneLineEachWithTheStringsThatThereAre)
{
    DeviceManager none;
    EXPECT_EQ(lines(none), Lines());

    plug("speakerphone");
    plug("no-telephony"); // has no manufacturer
    sim::UsbDeviceInfo info = sim::findProfile("webcam")->info;
    info.productId = 0x0867;
    info.manufacturer = info.product = u"";
    plug(info);
    info.manufacturer = u"M\u00fcller \U0001F3A4 <b>";
    plug(info);
    const Lines expected = {
        "0b0e:0410 1-1:1.0 Kelprobe Simulated speakerphone",
        "046d:0ac4 1-2:1.0 Simulated headset",
        "046d:0867 1-3:1.0 ",
        "046d:0867 1-4:1.0 M\u00fcller \U0001F3A4 <b> ",
    };
    DeviceManager manager;
    EXPECT_EQ(lines(manager), expected);
    plug("lamp-per-report");
    EXPECT_EQ(lines(manager), expected) << "later ones do not show";
    EXPECT_EQ(lines(none), Lines());
}

TEST_F(Devices, ChoosingARowSelectsTheIdOfItsLine)
{
    plug("speakerphone");
    plug("webcam");
    DeviceManager manager;
    for (const int outside : {-1, 2, INT_MAX, INT_MIN})
        manager.slt_onSelectDevice(outside);
    EXPECT_EQ(log(), "");

    const QString first = manager.deviceListModel()->stringList().first();
    const int webcam = first.startsWith(QStringLiteral("046d:0944 ")) ? 0 : 1;
    manager.slt_onSelectDevice(webcam);
    EXPECT_EQ(log(), "none KXHost Destroyed; 0x046d-HID-0x0944# KXHost Created");
    manager.slt_onSelectDevice(1 - webcam);
    EXPECT_EQ(log(), "0x046d-HID-0x0944# KXHost Destroyed; 0x0b0e-HID-0x0410# KXHost Created");
    EXPECT_EQ(manager.deviceSelectedIndex(), 0) << "where the window starts";
}

TEST_F(Devices, RowsOfOneVendorAndProductShareAHost)
{
    plug("webcam");
    plug("webcam");
    DeviceManager manager;
    QMetaObject::invokeMethod(&manager, "slt_onSelectDevice"); // the first, by default
    EXPECT_EQ(log(), "none KXHost Destroyed; 0x046d-HID-0x0944# KXHost Created");
    manager.slt_onSelectDevice(1);
    manager.slt_onSelectDevice(1);
    EXPECT_EQ(log(), "");
}

} // namespace
