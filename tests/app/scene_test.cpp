// The window as the user has it: the real scene on a display, clicked with mouse events, with the
// three objects behind it and a simulated device behind them.
#include "app/devicemanager.h"
#include "app/hidcontroller.h"
#include "app/logrecorder.h"
#include "tests/support/bus_test.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtTest>

#include <filesystem>
#include <fstream>
#include <optional>

namespace {

// What Qt and the engine say meanwhile. The scene anchors three children of a column on purpose.
int anchorWarnings = 0;
QStringList otherMessages;

void keepMessage(QtMsgType, const QMessageLogContext&, const QString& message)
{
    if (message.contains(u"Detected anchors on an item that is managed by a layout"))
        ++anchorWarnings;
    else
        otherMessages.append(message);
}

class Scene : public BusTest {
protected:
    // Shows the window as main() does.
    void open()
    {
        qInstallMessageHandler(keepMessage);
        devices_.emplace();
        engine_.emplace();
        QQmlContext* const context = engine_->rootContext();
        context->setContextProperty(QStringLiteral("cls_DeviceManager"), &*devices_);
        context->setContextProperty(QStringLiteral("cls_HidController"), &controller_);
        context->setContextProperty(QStringLiteral("cls_LogRecorder"), &LogRecorder::instance());
        engine_->load(QUrl(QStringLiteral("qrc:/main.qml")));
        window_ = qobject_cast<QQuickWindow*>(engine_->rootObjects().value(0));
        ASSERT_TRUE(window_ && QTest::qWaitForWindowExposed(window_));
    }

    void TearDown() override
    {
        engine_.reset();
        controller_.setMuteState(false);
        controller_.setMeetingStatus(false);
        controller_.setRingState(false);
        controller_.selectDevice(QStringLiteral("none"));
        LogRecorder::instance().toggleClearLog();
        qInstallMessageHandler(nullptr);
        EXPECT_EQ(std::exchange(anchorWarnings, 0), 3);
        EXPECT_EQ(std::exchange(otherMessages, {}), QStringList());
        BusTest::TearDown();
    }

    // The value of an expression in the scene's own terms.
    QVariant value(const std::string& expression)
    {
        return QQmlExpression(qmlContext(window_), window_, QString::fromStdString(expression))
            .evaluate();
    }
    std::string text(const std::string& expression)
    {
        return value("(" + expression + ").toString()").toString().toStdString();
    }
    QPoint middle(const std::string& item)
    {
        const auto* const target = value(item).value<QQuickItem*>();
        return target->mapToScene({target->width() / 2, target->height() / 2}).toPoint();
    }
    void click(const std::string& item)
    {
        QTest::mouseClick(window_, Qt::LeftButton, {}, middle(item));
    }

    // Text of the mute button, which of the five buttons are enabled, status strip, icon.
    std::string look()
    {
        return text("[id_mute.text, " + kButtons + ".map(b => b.enabled ? 1 : 0).join(''), "
            + "id_meeting_status.text, id_mute_status.text, " + kIcon + ".visible].join(', ')");
    }

    static std::string lastLine()
    {
        const QStringList lines = LogRecorder::instance().logListModel()->stringList();
        return lines.value(lines.size() - 1).toStdString();
    }

    const std::string kButtons = "[id_mute, id_pickup, id_hangup, id_incoming, id_clearlog]";
    const std::string kIcon = "id_mute_status.parent.children[1]";
    const std::string kChoice = "id_line2.children[1]";
    const std::string kLine = "id_line4.itemAt(1, 1)"; // the first
    HidController& controller_ = HidController::instance();
    std::optional<DeviceManager> devices_;
    std::optional<QQmlApplicationEngine> engine_;
    QQuickWindow* window_ = nullptr;
};

// A button, and the look after it is clicked.
constexpr const char* kClicks[][2] = {
    {"id_mute", "Mute, 00011, Meeting is Off, Meeting is Unmuted, false"},
    {"id_incoming", "Mute, 01111, Meeting is Off, Meeting is Unmuted, false"},
    {"id_hangup", "Mute, 00011, Meeting is Off, Meeting is Unmuted, false"},
    {"id_incoming", "Mute, 01111, Meeting is Off, Meeting is Unmuted, false"},
    {"id_pickup", "Mute, 10011, Meeting is On, Meeting is Unmuted, false"},
    {"id_mute", "UnMute, 10011, Meeting is On, Meeting is Muted, true"},
    {"id_incoming", "UnMute, 11111, Meeting is On, Meeting is Muted, true"},
    {"id_pickup", "UnMute, 10011, Meeting is On, Meeting is Muted, true"},
    {"id_mute", "Mute, 10011, Meeting is On, Meeting is Unmuted, false"},
};

TEST_F(Scene, FollowsAMeetingAndListsItsLog)
{
    auto& device = record(plug("speakerphone"));
    open();
    EXPECT_EQ(story_.take(), "03 00 00; 03 00 00; 03 00 00; ") << "the first is selected";
    for (const auto& [button, after] : kClicks) {
        click(button);
        EXPECT_EQ(look(), after) << button;
    }
    EXPECT_TRUE(device.inject({3, 8, 0})); // mute, on the device
    EXPECT_TRUE(QTest::qWaitFor([&] { return look() == kClicks[5][1]; }));

    EXPECT_EQ(text("id_line4.count"), "10");
    EXPECT_EQ(lastLine(), "0x1209-HID-0x0001# Muted from device");
    EXPECT_EQ(text("[" + kLine + ".text, " + kLine + ".readOnly]"),
        "0x1209-HID-0x0001# KXHost Created,true");
    const QVariant word
        = value(kLine + ".mapToItem(null, " + kLine + ".positionToRectangle(22).x, 5)");
    QTest::mouseDClick(window_, Qt::LeftButton, {}, word.toPointF().toPoint());
    EXPECT_EQ(text(kLine + ".selectedText"), "KXHost");
    click("id_clearlog");
    EXPECT_EQ(text("id_line4.count"), "0");
    QTest::mouseDClick(window_, Qt::LeftButton, {}, middle("id_incoming"));
    EXPECT_EQ(text("id_line4.count"), "2") << "both presses count";
}

TEST_F(Scene, ADeviceIsChosenFromTheList)
{
    plug("speakerphone");
    plug("led-per-report");
    open();
    EXPECT_EQ(text(kChoice + ".currentIndex"), "0");
    click(kChoice);
    QTest::keyClick(window_, Qt::Key_Down);
    QTest::keyClick(window_, Qt::Key_Return);
    EXPECT_EQ(text(kChoice + ".currentIndex"), "1");
    const std::string row = text(kChoice + ".displayText");
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
    const std::string row = kChoice + ".popup.contentItem.itemAt(20, 20).contentItem";
    EXPECT_EQ(text(row + ".text"), text(kChoice + ".displayText"));
    EXPECT_EQ(value(row + ".textFormat"), QVariant(Qt::PlainText));
    EXPECT_FALSE(window_->grabWindow().isNull()); // drawing it loads no image
}

TEST_F(Scene, HasNoDBusThread)
{
    open();
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(thread.path() / "comm"), name);
        EXPECT_NE(name, "QDBusConnection") << "see tests/support/no_session_bus.cpp";
    }
}

TEST_F(Scene, IsLaidOutAndDrawn)
{
    open();
    for (const auto& [expression, expected] : {
             std::pair<std::string, std::string>{
                 "[title, width, height, visible]", "Kelprobe,640,480,true"},
             {kButtons + ".map(b => b.text)", "Mute,Pickup,Hangup,Incoming,ClearLog"},
             {kButtons + ".map(b => b.flat)", "false,true,true,true,true"},
             {kButtons + ".every(b => Math.abs(b.width - id_mute.width) <= 1)", "true"},
             {"[id_banner.y, Math.abs(2 * id_banner.x + id_banner.width - width) < 2]", "20,true"},
             {"Math.abs(id_function_area.y - id_banner.y - id_banner.height / 2 - 20) < 1", "true"},
             {"[id_function_area.x, id_function_area.width]", "20,600"},
             {"id_function_area.y + id_function_area.height", "460"},
             {"[id_line2, id_line3, id_line4].map(i => [i.x, i.width])", "0,600,0,600,0,600"},
             {"id_line4.y - id_line3.y - id_line3.height", "20"},
             {"id_line4.y + id_line4.height == id_function_area.height", "true"},
             {"id_mute_status.parent.parent.height", "10"},
             {"[id_mute.background.color, id_mute.background.border.color]", "#f6f6f6,#26282a"},
             {kChoice + ".count", "0"},              // without a device
             {kIcon + ".implicitWidth > 0", "true"}, // the odd URL finds it
         })
        EXPECT_EQ(text(expression), expected) << expression;

    const QPoint inside(middle("id_incoming").x(), middle("id_line3").y() - 15);
    EXPECT_EQ(window_->grabWindow().pixelColor(inside), QColor(0xf6, 0xf6, 0xf6));
    QTest::mousePress(window_, Qt::LeftButton, {}, inside);
    EXPECT_EQ(window_->grabWindow().pixelColor(inside), QColor(0xd6, 0xd6, 0xd6));
    QTest::mouseRelease(window_, Qt::LeftButton, {}, inside);
}

} // namespace
