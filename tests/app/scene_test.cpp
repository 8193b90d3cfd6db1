// The window as the user has it: the real scene on a display, clicked with mouse events, with the
// three objects behind it and a simulated device behind them.
#include "bus_test.h"
#include "devicemanager.h"
#include "hidcontroller.h"
#include "logrecorder.h"
#include "qt_environment.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QtTest>

#include <optional>

namespace {

[[maybe_unused]] const auto* const qt = QtEnvironment<QGuiApplication>::add();

// What Qt and the engine say meanwhile, without the places in the scene.
std::vector<std::string> messages;

void keepMessage(QtMsgType, const QMessageLogContext&, const QString& message)
{
    static const QRegularExpression place(QStringLiteral("^(qrc:/main\\.qml):\\d+:\\d+:"));
    messages.push_back(QString(message).replace(place, QStringLiteral("\\1:")).toStdString());
}

// The scene anchors the children of a column on purpose.
const std::vector<std::string> kExpectedMessages = {
    "qrc:/main.qml: QML RowLayout: Detected anchors on an item that is managed by a layout. "
    "This is undefined behavior; use Layout.alignment instead.",
    "qrc:/main.qml: QML RowLayout: Detected anchors on an item that is managed by a layout. "
    "This is undefined behavior; use Layout.alignment instead.",
    "qrc:/main.qml: QML ListView: Detected anchors on an item that is managed by a layout. "
    "This is undefined behavior; use Layout.alignment instead.",
};

class Scene : public BusTest {
protected:
    void SetUp() override
    {
        BusTest::SetUp();
        closeDevice();
        messages.clear();
        qInstallMessageHandler(keepMessage);
    }

    // Shows the window as main() does.
    void open()
    {
        devices_.emplace();
        engine_.emplace();
        QQmlContext* const context = engine_->rootContext();
        context->setContextProperty(QStringLiteral("cls_DeviceManager"), &*devices_);
        context->setContextProperty(QStringLiteral("cls_HidController"), &controller_);
        context->setContextProperty(QStringLiteral("cls_LogRecorder"), &LogRecorder::instance());
        engine_->load(QUrl(QStringLiteral("qrc:/main.qml")));
        ASSERT_EQ(engine_->rootObjects().size(), 1);
        window_ = qobject_cast<QQuickWindow*>(engine_->rootObjects().first());
        ASSERT_TRUE(window_ && QTest::qWaitForWindowExposed(window_));
    }

    void TearDown() override
    {
        engine_.reset();
        devices_.reset();
        controller_.setMuteState(false);
        controller_.setMeetingStatus(false);
        controller_.setRingState(false);
        closeDevice();
        qInstallMessageHandler(nullptr);
        EXPECT_EQ(messages, kExpectedMessages);
        BusTest::TearDown();
    }

    void closeDevice()
    {
        controller_.selectDevice(QStringLiteral("none"));
        LogRecorder::instance().toggleClearLog();
    }

    // The value of an expression in the scene's own terms.
    QVariant value(const std::string& expression)
    {
        QQmlExpression e(qmlContext(window_), window_, QString::fromStdString(expression));
        QVariant result = e.evaluate();
        EXPECT_FALSE(e.hasError()) << e.error().toString().toStdString();
        return result;
    }
    std::string text(const std::string& expression)
    {
        return value(expression).toString().toStdString();
    }
    QQuickItem* item(const std::string& expression)
    {
        return value(expression).value<QQuickItem*>();
    }

    void click(const std::string& expression)
    {
        const QQuickItem* const target = item(expression);
        QTest::mouseClick(window_, Qt::LeftButton, {},
            target->mapToScene({target->width() / 2, target->height() / 2}).toPoint());
    }

    bool iconShows() { return item(kIcon)->isVisible(); }

    // Text of the mute button, which of the five buttons are enabled, status strip, icon.
    std::string look()
    {
        return text("[id_mute.text, [id_mute, id_pickup, id_hangup, id_incoming, id_clearlog].map("
                    "b => b.enabled ? 1 : 0).join(''), id_meeting_status.text, id_mute_status.text]"
                    ".join(', ')")
            + (iconShows() ? " (icon)" : "");
    }

    static std::string lastLine()
    {
        const QStringList lines = LogRecorder::instance().logListModel()->stringList();
        return lines.value(lines.size() - 1).toStdString();
    }

    static constexpr auto kIcon = "id_mute_status.parent.children[1]";
    static constexpr auto kChoice = "id_line2.children[1]";
    static constexpr auto kLine = "id_line4.itemAt(1, 1)"; // the first
    HidController& controller_ = HidController::instance();
    std::optional<DeviceManager> devices_;
    std::optional<QQmlApplicationEngine> engine_;
    QQuickWindow* window_ = nullptr;
};

struct Click {
    const char* button;
    const char* look;
    const char* lastLine;
};

// clang-format off
const Click kClicks[] = {
    {"id_mute", "Mute, 00011, Meeting is Off, Meeting is Unmuted", "KXHost Created"},
    {"id_incoming", "Mute, 01111, Meeting is Off, Meeting is Unmuted", "Incoming Meeting"},
    {"id_hangup", "Mute, 00011, Meeting is Off, Meeting is Unmuted", "Reject Meeting from UI"},
    {"id_incoming", "Mute, 01111, Meeting is Off, Meeting is Unmuted", "Incoming Meeting"},
    {"id_pickup", "Mute, 10011, Meeting is On, Meeting is Unmuted", "Accept Meeting from UI"},
    {"id_mute", "UnMute, 10011, Meeting is On, Meeting is Muted (icon)", "Muted from UI"},
    {"id_incoming", "UnMute, 11111, Meeting is On, Meeting is Muted (icon)", "In Meeting and Incoming a New Meeting"},
    {"id_pickup", "UnMute, 10011, Meeting is On, Meeting is Muted (icon)", "In Meeting and Accept a New Meeting from UI"},
    {"id_mute", "Mute, 10011, Meeting is On, Meeting is Unmuted", "Unmuted from UI"},
};
// clang-format on

TEST_F(Scene, FollowsAMeeting)
{
    auto& device = plug("speakerphone");
    open();
    EXPECT_EQ(outputs(device, 3), Reports(3, {3, 0, 0})) << "the first device is selected";
    for (const auto& [button, after, line] : kClicks) {
        click(button);
        EXPECT_EQ(look(), after);
        EXPECT_EQ(lastLine(), std::string("0x0b0e-HID-0x0410# ") + line);
    }
    EXPECT_TRUE(device.inject({3, 8, 0})); // mute, on the device
    EXPECT_TRUE(QTest::qWaitFor([&] { return iconShows(); }));
    EXPECT_EQ(text("id_mute.text"), "UnMute");
}

TEST_F(Scene, ListsTheLogUntilItIsCleared)
{
    open();
    EXPECT_EQ(text("id_line2.children[1].count"), "0") << "without a device";
    for (int i = 0; i < 3; ++i)
        click("id_incoming");
    EXPECT_EQ(text("id_line4.count"), "3");
    ASSERT_TRUE(QTest::qWaitFor([&] { return item(kLine); }));
    EXPECT_EQ(item(kLine)->property("text"), QStringLiteral("none Incoming Meeting"));
    EXPECT_EQ(item(kLine)->property("readOnly"), true);
    QTest::mouseDClick(window_, Qt::LeftButton, {}, item(kLine)->mapToScene({20, 8}).toPoint());
    EXPECT_EQ(item(kLine)->property("selectedText"), QStringLiteral("none"));

    click("id_clearlog");
    EXPECT_EQ(text("id_line4.count"), "0");
    click("id_incoming");
    EXPECT_EQ(text("id_line4.count"), "1");
}

TEST_F(Scene, ADeviceIsChosenFromTheList)
{
    plug("speakerphone");
    plug("lamp-per-report");
    open();
    EXPECT_EQ(item(kChoice)->property("currentIndex"), 0);
    click(kChoice);
    QTest::keyClick(window_, Qt::Key_Down);
    QTest::keyClick(window_, Qt::Key_Return);
    EXPECT_EQ(item(kChoice)->property("currentIndex"), 1);
    const std::string row = item(kChoice)->property("displayText").toString().toStdString();
    EXPECT_EQ(
        lastLine(), "0x" + row.substr(0, 4) + "-HID-0x" + row.substr(5, 4) + "# KXHost Created");
}

TEST_F(Scene, ADevicesNamesAreNoMarkup)
{
    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    info.manufacturer = u"A&B <img src=\"qrc:/mivo/images/video/mutedmic.png\">";
    plug(info);
    open();
    click(kChoice);
    const auto* const row = item("id_line2.children[1].popup.contentItem.itemAt(20, 20)");
    ASSERT_TRUE(row);
    EXPECT_EQ(window_->grabWindow().isNull(), false);
    const auto* const shown = row->property("contentItem").value<QQuickItem*>();
    EXPECT_EQ(shown->property("text"), item(kChoice)->property("displayText"));
    EXPECT_EQ(shown->property("textFormat"), QVariant(Qt::PlainText));
}

TEST_F(Scene, IsLaidOutAndDrawn)
{
    open();
    for (const auto& [expression, expected] : {
             std::pair{"[title, width, height, visible]", "Kelprobe,640,480,true"},
             {"[id_pickup, id_hangup, id_incoming, id_clearlog].map(b => b.text)",
                 "Pickup,Hangup,Incoming,ClearLog"},
             {"[id_banner.y, Math.abs(2 * id_banner.x + id_banner.width - width) < 2]", "20,true"},
             {"[id_function_area.x, id_function_area.width]", "20,600"},
             {"Math.abs(id_function_area.y - id_banner.y - id_banner.height / 2 - 20) < 1", "true"},
             {"id_function_area.y + id_function_area.height", "460"},
             {"[id_line2, id_line3, id_line4].map(i => [i.x, i.width])", "0,600,0,600,0,600"},
             {"id_line4.y - id_line3.y - id_line3.height", "20"},
             {"id_line4.y + id_line4.height == id_function_area.height", "true"},
             {"id_mute_status.parent.parent.height", "10"},
             {"[id_mute, id_pickup, id_hangup, id_incoming, id_clearlog].every("
              "b => Math.abs(b.width - id_mute.width) <= 1)",
                 "true"},
             {"[id_mute, id_pickup, id_hangup, id_incoming, id_clearlog].map(b => b.flat)",
                 "false,true,true,true,true"},
             {"[id_incoming.background.color, id_incoming.background.border.color]",
                 "#f6f6f6,#26282a"},
         })
        EXPECT_EQ(text("(" + std::string(expression) + ").toString()"), expected) << expression;
    // The odd URL finds the icon.
    EXPECT_GT(item(kIcon)->implicitWidth(), 0);

    const QPoint inside = item("id_incoming")->mapToScene({5, 20}).toPoint();
    EXPECT_EQ(window_->grabWindow().pixelColor(inside), QColor(0xf6, 0xf6, 0xf6));
    QTest::mousePress(window_, Qt::LeftButton, {}, inside);
    EXPECT_EQ(window_->grabWindow().pixelColor(inside), QColor(0xd6, 0xd6, 0xd6));
    QTest::mouseRelease(window_, Qt::LeftButton, {}, inside);
}

} // namespace
