// The real scene on a display, clicked with mouse events, with the three real objects and a
// simulated device.
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

#include <cstdlib>
#include <optional>

namespace {

QStringList messages; // of Qt

class Scene : public BusTest {
protected:
    // Shows the window as main() does.
    void open()
    {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
            messages.append(message);
        });
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
        // The scene has anchors on three children of a layout on purpose.
        EXPECT_EQ(messages.filter(QStringLiteral("Detected anchors on an item")).size(), 3);
        EXPECT_EQ(std::exchange(messages, {}).size(), 3);
        BusTest::TearDown();
    }

    // The value of an expression in the context of the scene.
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

    // The mute button's text, which of the five buttons are enabled, the status labels, the icon.
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
    EXPECT_TRUE(lastLine().ends_with("# Muted from device"));
    EXPECT_TRUE(text(kLine + ".text").ends_with("# KXHost Created"));
    EXPECT_EQ(text(kLine + ".readOnly"), "true");
    const QVariant word
        = value(kLine + ".mapToItem(null, " + kLine + ".positionToRectangle(22).x, 5)");
    QTest::mouseDClick(window_, Qt::LeftButton, {}, word.toPointF().toPoint());
    EXPECT_EQ(text(kLine + ".selectedText"), "KXHost");
    click("id_clearlog");
    QTest::mouseDClick(window_, Qt::LeftButton, {}, middle("id_incoming"));
    EXPECT_EQ(text("id_line4.count"), "2") << "both presses count";
    EXPECT_NE(std::system("grep -qs QDBusConnection /proc/$PPID/task/*/comm"), 0)
        << "see tests/support/no_session_bus.cpp";
}

TEST_F(Scene, ADeviceIsChosenFromAListOfWholePlainNames)
{
    sim::UsbDeviceInfo info = sim::findProfile("speakerphone")->info;
    info.manufacturer = u"A&B <img src=\"qrc:/mivo/images/video/mutedmic.png\">";
    info.product = u"two\nlines\u2028and\ttabs " + std::u16string(70, u'w');
    plug(info);
    info.productId = 2;
    info.product.resize(30); // a text of another width
    plug(info);
    open();
    click(kChoice);
    const std::string row = kChoice + ".popup.contentItem.itemAt(20, 20).contentItem";
    EXPECT_EQ(text(row + ".text"), text(kChoice + ".displayText"));
    EXPECT_EQ(value(row + ".textFormat"), QVariant(Qt::PlainText));
    EXPECT_EQ(text("[" + row + ".lineCount > 1, " + row + ".truncated]"), "true,false");
    EXPECT_FALSE(window_->grabWindow().isNull()); // drawing it loads no image

    QTest::keyClick(window_, Qt::Key_Down);
    QTest::keyClick(window_, Qt::Key_Return);
    EXPECT_EQ(text(kChoice + ".currentIndex"), "1");
    const std::string shown = text(kChoice + ".displayText");
    EXPECT_NE(shown.find("> two lines and tabs www"), std::string::npos) << shown;
    EXPECT_EQ(lastLine(), "0x1209-HID-0x" + shown.substr(5, 4) + "# KXHost Created");
}

class LogView : public Scene {
protected:
    // Lines of different heights.
    static void append(int lines)
    {
        for (int i = 0; i < lines; ++i)
            LogRecorder::instance().append(QString(i % 3 * 60, QLatin1Char('w')));
    }
    // Whether the last of so many lines is visible, at the latest after a time.
    bool showsEnd(const std::string& count, int milliseconds = 5000)
    {
        const char* const last = "id_line4.indexAt(1, id_line4.contentY + id_line4.height - 1) + 1";
        return QTest::qWaitFor(
            [&] { return text("id_line4.count") == count && text(last) == count; }, milliseconds);
    }
    // Moves the handle of the scroll bar by a share of the view's height.
    void dragHandle(double share)
    {
        const QPoint handle = middle("id_scroll_bar.contentItem");
        const QPoint way(0, static_cast<int>(share * value("id_line4.height").toReal()));
        QTest::mousePress(window_, Qt::LeftButton, {}, handle);
        QTest::mouseMove(window_, handle + way / 2);
        QTest::mouseMove(window_, handle + way);
        QTest::mouseRelease(window_, Qt::LeftButton, {}, handle + way);
    }
};

TEST_F(LogView, FollowsItsEndUnlessTheUserHasScrolled)
{
    open();
    EXPECT_EQ(text("id_scroll_bar.visible"), "false");
    append(100);
    EXPECT_TRUE(showsEnd("100"));
    EXPECT_EQ(text("id_scroll_bar.visible"), "true");
    window_->setHeight(300);
    EXPECT_TRUE(QTest::qWaitFor([&] { return value("id_line4.height").toInt() < 150; }));
    EXPECT_TRUE(showsEnd("100"));

    const QPoint where = middle("id_line4");
    QWheelEvent wheelUp(where, window_->mapToGlobal(where), {}, {0, 240}, Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(window_, &wheelUp);
    append(1); // while the view moves
    EXPECT_TRUE(QTest::qWaitFor([&] { return text("id_line4.moving") == "false"; }));
    const QVariant position = value("id_line4.contentY");
    append(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return text("id_line4.count") == "102"; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(value("id_line4.contentY"), position);
    EXPECT_FALSE(showsEnd("102", 0));

    dragHandle(1);
    append(1);
    EXPECT_TRUE(showsEnd("103"));
    dragHandle(-1);
    EXPECT_FALSE(showsEnd("103", 0));
    click("id_clearlog");
    append(50);
    EXPECT_TRUE(showsEnd("50"));
}

TEST_F(Scene, AButtonShowsTheKeyboardFocusAndThePress)
{
    open();
    controller_.setMeetingStatus(true);
    controller_.setRingState(true);
    window_->requestActivate(); // there is no window manager
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_));
    const auto colour = [this](const std::string& button, const std::string& place) {
        const QPointF point = value(button + ".mapToItem(null, " + place + ")").toPointF();
        return window_->grabWindow().pixelColor(point.toPoint()).name().toStdString();
    };
    const std::string focused = kButtons + ".findIndex(b => b.activeFocus)";
    for (int i = 0; i < 10 && text(focused) != "0"; ++i)
        QTest::keyClick(window_, Qt::Key_Tab);
    for (int i = 0; i < 5; ++i) {
        const std::string button = kButtons + "[" + std::to_string(i) + "]";
        EXPECT_EQ(text(focused), std::to_string(i));
        EXPECT_EQ(colour(button, "2, 20"), text(button + ".palette.highlight"));
        QTest::keyClick(window_, Qt::Key_Tab);
        EXPECT_EQ(colour(button, "2, 20"), "#f6f6f6");
    }
    QTest::mousePress(window_, Qt::LeftButton, {}, middle("id_incoming"));
    EXPECT_EQ(colour("id_incoming", "9, 9"), "#d6d6d6");
    QTest::mouseRelease(window_, Qt::LeftButton, {}, middle("id_incoming"));
}

// Also in the smallest window.
TEST_F(Scene, NothingIsCut)
{
    controller_.setMuteState(true);
    open();
    const std::vector<std::string> conditions = {
        kButtons + ".every(b => !b.contentItem.truncated)",
        kButtons + ".every(b => Math.abs(b.width - id_mute.width) <= 1)", "id_banner.width < width",
        "id_line3.y >= id_line2.y + id_line2.height",
        // Both the anchors and the layout have a say in these.
        "id_line4.y == id_line3.y + id_line3.height + 20",
        "id_line4.y + id_line4.height == id_function_area.height && id_line4.height > 40",
        "id_line4.width == id_function_area.width",
        "id_mute_status.mapToItem(null, 0, id_mute_status.height).y <= height",
        kIcon + ".mapToItem(null, " + kIcon + ".width, 0).x <= width",
        kIcon + ".implicitWidth > 0", // the odd URL finds it
    };
    for (const char* size : {"[width, height]", "[minimumWidth, minimumHeight]"}) {
        const auto wanted = value(size).value<QVariantList>();
        window_->resize(wanted[0].toInt(), wanted[1].toInt());
        EXPECT_TRUE(QTest::qWaitFor([&] { return value("contentItem.height") == wanted[1]; }));
        for (const std::string& condition : conditions)
            EXPECT_EQ(text(condition), "true") << condition << " at " << size;
    }
}

} // namespace
