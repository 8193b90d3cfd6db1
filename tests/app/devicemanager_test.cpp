// The list of devices on a simulated bus.
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

    // Takes the lines of the log.
    static std::string log()
    {
        const QStringList lines = LogRecorder::instance().logListModel()->stringList();
        LogRecorder::instance().toggleClearLog();
        return lines.join(QStringLiteral("; ")).toStdString();
    }
};

TEST_F(Devices, EachHasALineWithItsStringsThatSelectsItsId)
{
    sim::UsbDeviceInfo info = sim::findProfile("webcam")->info;
    for (const auto& [manufacturer, product, id] : {
             std::tuple{u"Maker", u"Phone", uint16_t{3}},
             {u"", u"Phone", uint16_t{3}},
             {u"M\u00fcller \U0001F3A4 <b>", u"", uint16_t{4}},
         }) {
        info.manufacturer = manufacturer;
        info.product = product;
        info.productId = id;
        plug(info);
    }
    info.controls().interfaceClass = 0xff; // not HID
    plug(info);
    DeviceManager manager;
    plug("led-per-report"); // too late
    const QStringList lines = manager.deviceListModel()->stringList();
    QStringList sorted = lines; // hidapi does not promise an order
    sorted.sort();
    EXPECT_EQ(sorted.join(QStringLiteral("|")),
        QStringLiteral("1209:0003 1-1:1.0 Maker Phone|1209:0003 1-2:1.0 Phone|"
                       "1209:0004 1-3:1.0 M\u00fcller \U0001F3A4 <b> "));

    EXPECT_EQ(manager.deviceSelectedIndex(), 0) << "where the window starts";
    HidController::instance().selectDevice(QStringLiteral("none"));
    (void)log();
    for (const int outside : {-1, 3, INT_MAX, INT_MIN})
        manager.slt_onSelectDevice(outside);
    EXPECT_EQ(log(), "");
    QString before = QStringLiteral("none");
    for (int row = 0; row < 3; ++row) {
        const QString id = QStringLiteral("0x1209-HID-0x%1#").arg(lines[row].mid(5, 4));
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
