// The real window on a display, with mouse and key events, connected to a bench. Lamps are seen in
// pictures of the window.
#include "report/format/recording.h"
#include "tests/panel/fake_bench.h"
#include "tests/support/temp_directory.h"
#include "tools/panel/panel_windows.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QProcess>
#include <QQuickItem>
#include <QScreen>
#include <QtTest>
#include <gtest/gtest.h>

#include <optional>

namespace {

using panel::Look;

QStringList messages; // of Qt

class PanelWindow : public testing::TestWithParam<Look> {
protected:
    void SetUp() override
    {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
            messages.append(message);
        });
        bench_.emplace(fake_.socket());
        theme_.emplace(GetParam());
        windows_.emplace(*bench_, *theme_);
        bench_->start();
        ASSERT_TRUE(QTest::qWaitFor([this] { return bench_->isConnected(); }));
        ASSERT_TRUE(windows_->open(std::nullopt));
        window_ = windows_->windows().at(0).get();
        const QSize room = window_->screen()->availableSize();
        EXPECT_EQ(window_->size().boundedTo(room), window_->size());
        EXPECT_EQ(window_->minimumSize().boundedTo(room), window_->minimumSize());
        window_->resize(640, 480);
        window_->requestActivate(); // there is no window manager
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_));
        ASSERT_TRUE(waitFor([this] { return item("button-volume-decrement"); }));
    }

    void TearDown() override
    {
        windows_.reset();
        bench_.reset();
        qInstallMessageHandler(nullptr);
        EXPECT_EQ(std::exchange(messages, {}).join('\n').toStdString(), "");
    }

    template <class Condition>
    static bool waitFor(Condition condition)
    {
        return QTest::qWaitFor([&] { return static_cast<bool>(condition()); });
    }

    // The visible item with this object name; null if there is none.
    QQuickItem* item(const QString& name) { return find(window_->contentItem(), name); }
    static QQuickItem* find(QQuickItem* below, const QString& name)
    {
        if (!below->isVisible())
            return nullptr;
        if (below->objectName() == name)
            return below;
        for (QQuickItem* const child : below->childItems())
            if (QQuickItem* const found = find(child, name))
                return found;
        return nullptr;
    }
    QRect placeOf(const QString& name)
    {
        const QQuickItem* const found = item(name);
        return found ? found->mapRectToScene(found->boundingRect()).toRect() : QRect();
    }
    void click(const QString& name)
    {
        QTest::mouseClick(window_, Qt::LeftButton, {}, placeOf(name).center());
    }
    void type(const char* text)
    {
        QTest::sendKeyEvent(QTest::Click, window_, Qt::Key_unknown, QString::fromUtf8(text), {});
    }
    QVariant value(const QString& name, const char* property)
    {
        const QQuickItem* const found = item(name);
        return found ? found->property(property) : QVariant();
    }
    // What a screen reader says.
    static std::string spoken(QObject* object)
    {
        QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(object);
        return interface ? interface->text(QAccessible::Name).toStdString() : "(nothing)";
    }

    // What is seen in this place of the window.
    QImage picture(const QRect& place)
    {
        const QImage image = window_->grabWindow();
        const double density = static_cast<double>(image.width()) / window_->width();
        return image.copy(QRectF(place.topLeft() * density, place.size() * density).toRect());
    }
    static int differences(const QImage& a, const QImage& b)
    {
        int count = 0;
        for (int y = 0; y < a.height(); ++y)
            for (int x = 0; x < a.width(); ++x)
                count += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > 40;
        return count;
    }
    bool commandsAre(const QStringList& expected)
    {
        const bool same = waitFor([&] { return fake_.commands == expected; });
        EXPECT_TRUE(same) << fake_.commands.join(", ").toStdString();
        return same;
    }

    FakeBench fake_;
    std::optional<panel::Bench> bench_;
    std::optional<panel::Theme> theme_;
    std::optional<panel::PanelWindows> windows_;
    QQuickWindow* window_ = nullptr;
};

INSTANTIATE_TEST_SUITE_P(Looks, PanelWindow, testing::Values(Look::kLight, Look::kDark));

TEST_P(PanelWindow, LampsCanBeToldApartWithoutColour)
{
    // The upper left part of the row is the lamp without its texts.
    const QRect lamp(placeOf("lamp-ring").topLeft(), QSize(22, placeOf("lamp-ring").height()));
    const char* const states[][2] = {{"off", "off"}, {"on", "on"}, {"blink", "blinking"}};
    QList<QImage> pictures;
    for (const auto& [state, text] : states) {
        fake_.setLamp("ring", state);
        EXPECT_TRUE(
            waitFor([this, state = state] { return value("lamp-ring", "lampState") == state; }));
        EXPECT_EQ(spoken(item("lamp-ring")), std::string("Ring lamp: ") + text);
        pictures.append(picture(lamp));
    }
    const int pixels = pictures[0].width() * pictures[0].height();
    for (const auto& [a, b] : {std::pair(0, 1), std::pair(0, 2), std::pair(1, 2)})
        EXPECT_GT(differences(pictures[a], pictures[b]), pixels / 20) << a << " and " << b;
    // The disc of the blinking lamp changes its size.
    EXPECT_TRUE(waitFor([&] { return differences(pictures[2], picture(lamp)) > 4; }));
    const QPoint centre = pictures[1].rect().center();
    EXPECT_EQ(QColor(pictures[1].pixel(centre - QPoint(centre.x() / 8, 0))), theme_->lamp());
    fake_.setLamp("ring", "off");
    EXPECT_TRUE(waitFor([&] { return differences(pictures[0], picture(lamp)) == 0; }));
}

TEST_P(PanelWindow, AButtonIsDownAsLongAsTheMouseOrTheKeyIs)
{
    const QRect place = placeOf("button-mute");
    const QImage up = picture(place);
    QTest::mousePress(window_, Qt::LeftButton, {}, place.center());
    EXPECT_TRUE(commandsAre({"1: press mute --hold"}));
    EXPECT_GT(differences(up, picture(place)), place.width() * place.height() / 4);
    EXPECT_EQ(spoken(item("button-mute")), "Phone Mute, held down");
    QTest::mouseRelease(window_, Qt::LeftButton, {}, place.center());
    EXPECT_TRUE(commandsAre({"1: press mute --hold", "1: release mute"}));
    EXPECT_EQ(spoken(item("button-mute")), "Phone Mute");

    fake_.commands.clear();
    item("button-flash")->forceActiveFocus(Qt::TabFocusReason);
    QTest::keyPress(window_, Qt::Key_Space);
    for (const bool flagged : {true, false}) { // the key repeats itself
        for (const auto type : {QEvent::KeyRelease, QEvent::KeyPress}) {
            QKeyEvent repeated(type, Qt::Key_Space, {}, QStringLiteral(" "), flagged);
            QCoreApplication::sendEvent(window_, &repeated);
        }
    }
    QTest::keyRelease(window_, Qt::Key_Space);
    EXPECT_TRUE(commandsAre({"1: press flash --hold", "1: release flash"}));

    fake_.commands.clear();
    QTest::mousePress(window_, Qt::LeftButton, {}, place.center());
    EXPECT_TRUE(commandsAre({"1: press mute --hold"}));
    fake_.setPlugged(false); // the device lets go by itself
    EXPECT_TRUE(waitFor([&] { return spoken(item("button-mute")) == "Phone Mute"; }));
    QTest::mouseRelease(window_, Qt::LeftButton, {}, place.center());
    EXPECT_TRUE(commandsAre({"1: press mute --hold"}));
}

TEST_P(PanelWindow, SwitchesShowThePositionOfTheDevice)
{
    click("button-hook");
    EXPECT_TRUE(commandsAre({"1: press hook --hold"}));
    EXPECT_EQ(spoken(item("button-hook")), "Hook Switch: on-hook") << "the device has not moved";
    fake_.setHook("off");
    EXPECT_TRUE(waitFor([&] { return spoken(item("button-hook")) == "Hook Switch: off-hook"; }));
    click("button-hook");
    click("plug");
    EXPECT_TRUE(commandsAre({"1: press hook --hold", "1: release hook", "1: unplug"}));
    fake_.setPlugged(false);
    EXPECT_TRUE(waitFor([&] { return spoken(item("plug")) == "Plug: unplugged"; }));
    click("button-flash");
    click("plug");
    EXPECT_TRUE(commandsAre({"1: press hook --hold", "1: release hook", "1: unplug", "1: replug"}));
}

TEST_P(PanelWindow, EveryControlHasAFocusThatIsSeenAndAName)
{
    fake_.send(R"("event": "input", "report": "0301", "meaning": ["Hook Switch on"])");
    EXPECT_TRUE(waitFor([&] { return value("log", "count") == 1; }));
    QStringList reached;
    const QImage before = window_->grabWindow();
    for (int i = 0; i < 40; ++i) {
        QTest::keyClick(window_, Qt::Key_Tab);
        QQuickItem* const focused = window_->activeFocusItem();
        const QString name = focused->objectName();
        if (reached.contains(name) && name == reached.first())
            break;
        reached.append(name);
        EXPECT_NE(spoken(focused), "") << name.toStdString();
        EXPECT_NE(spoken(focused), "(nothing)") << name.toStdString();
        const QRect place = focused->mapRectToScene(focused->boundingRect()).toRect();
        EXPECT_TRUE(QRect({}, window_->size()).contains(place)) << name.toStdString();
        const QRect around = place.adjusted(-4, -4, 4, 4) & QRect({}, window_->size());
        int marked = 0; // pixels of the frame
        const QImage image = picture(around);
        for (int x = 0; x < image.width(); ++x)
            for (int y = 0; y < image.height(); ++y)
                marked += QColor(image.pixel(x, y)) == theme_->accent();
        EXPECT_GT(marked, around.width()) << name.toStdString();
    }
    const QStringList expected{"plug", "button-hook", "button-mute", "button-flash",
        "button-volume-increment", "button-volume-decrement", "count-claim", "fault-claim",
        "count-write", "fault-write", "fault-open", "count-short", "fault-short", "bytes", "flood",
        "clear", "save", "filter", "show-0", "show-1", "show-2", "show-3", "log"};
    EXPECT_EQ(reached.join(' ').toStdString(), expected.join(' ').toStdString());
}

TEST_P(PanelWindow, SwitchesFaultsOnForANumberOfTimes)
{
    item("count-claim")->forceActiveFocus();
    type("2");
    type("x"); // not a number
    QTest::keyClick(window_, Qt::Key_Return);
    EXPECT_TRUE(item("fault-claim")->hasActiveFocus()) << "the field cannot be used now";
    item("fault-short")->forceActiveFocus();
    QTest::keyClick(window_, Qt::Key_Space);
    EXPECT_TRUE(item("count-short")->hasActiveFocus()) << "this fault needs a number";
    item("fault-open")->forceActiveFocus();
    QTest::keyClick(window_, Qt::Key_Space);
    EXPECT_TRUE(commandsAre({"1: fault claim 2", "1: fault open"}));
    fake_.send(R"("event": "fault", "name": "open", "armed": true)");
    EXPECT_TRUE(waitFor([&] { return value("fault-open", "on").toBool(); }));
    fake_.nextError = "there is no such fault";
    QTest::keyClick(window_, Qt::Key_Space);
    EXPECT_TRUE(commandsAre({"1: fault claim 2", "1: fault open", "1: fault open off"}));
    EXPECT_TRUE(waitFor([&] { return value("message", "text") == "there is no such fault"; }));
}

TEST_P(PanelWindow, SaysWhatIsWrong)
{
    EXPECT_FALSE(item("notice"));
    fake_.setPlugged(false);
    EXPECT_TRUE(waitFor([&] { return value("notice", "text") == "The device is unplugged."; }));
    EXPECT_FALSE(item("button-mute")->isEnabled());
    fake_.setPlugged(true);
    EXPECT_TRUE(waitFor([&] { return !item("notice"); }));
    EXPECT_TRUE(item("button-mute")->isEnabled());
    fake_.end();
    EXPECT_TRUE(waitFor(
        [&] { return value("notice", "text").toString().startsWith("The bench has ended."); }));
    for (const char* const name : {"button-mute", "button-hook", "plug", "fault-open"})
        EXPECT_FALSE(item(name)->isEnabled()) << name;
    EXPECT_TRUE(item("save")->isEnabled());
}

TEST_P(PanelWindow, AShortNameLeavesRoomForNotices)
{
    QJsonObject state = speakerphone();
    state["manufacturer"] = "";
    state["product"] = "p";
    fake_.devices[0] = state;
    fake_.dropEvents();
    EXPECT_TRUE(waitFor([&] { return window_->title() == "p - Kelprobe panel"; }));
    fake_.end();
    EXPECT_TRUE(waitFor([&] { return item("notice"); }));
    EXPECT_EQ(placeOf("notice").width(), window_->width());
}

TEST_P(PanelWindow, SendsReportsThatNoControlSends)
{
    item("bytes")->forceActiveFocus();
    type("03 01");
    QTest::keyClick(window_, Qt::Key_Return);
    item("flood")->forceActiveFocus();
    type("800");
    QTest::keyClick(window_, Qt::Key_Return);
    EXPECT_TRUE(commandsAre({"1: raw 03 01", "1: fault flood 800"}));
}

TEST_P(PanelWindow, TheLogIsFilteredSelectedCopiedAndSaved)
{
    for (const char* const event :
        {R"("event": "output", "report": "030800", "meaning": ["Ring on"])",
            R"("event": "input", "report": "0301", "meaning": ["Hook Switch on"])",
            R"("event": "output", "report": "030000", "meaning": ["Ring off"])"})
        fake_.send(event);
    EXPECT_TRUE(waitFor([&] { return value("lineCount", "text") == "3 lines"; }));
    QTest::keyClick(window_, Qt::Key_F, Qt::ControlModifier);
    type("ring");
    EXPECT_TRUE(waitFor([&] { return value("lineCount", "text") == "2 of 3 lines"; }));
    EXPECT_TRUE(waitFor([&] { // both lines are there
        return value("log", "contentHeight") == 2 * value("log", "rowHeight").toInt();
    }));

    const QPoint first = placeOf("log").topLeft() + QPoint(50, 8);
    const QPoint step(0, value("log", "rowHeight").toInt());
    QTest::mousePress(window_, Qt::LeftButton, {}, first);
    QTest::mouseMove(window_, first + step);
    QTest::mouseRelease(window_, Qt::LeftButton, {}, first + step);
    QTest::keyClick(window_, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(),
        "   0.001000  out  03 08 00     Ring on\n   0.003000  out  03 00 00     Ring off\n");
    EXPECT_EQ(value("whole", "text"), "0.003000  out  03 00 00     Ring off");
    QTest::keyClick(window_, Qt::Key_Up);
    EXPECT_EQ(value("whole", "text"), "0.001000  out  03 08 00     Ring on");

    const test::TempDirectory directory;
    const QString path = QString::fromStdString(directory.path() + "a.hid");
    QTest::keyClick(window_, Qt::Key_S, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&] { return item("path") && item("path")->hasActiveFocus(); }));
    EXPECT_TRUE(value("path", "text").toString().endsWith("/speakerphone.hid"));
    QTest::keyClick(window_, Qt::Key_A, Qt::ControlModifier);
    type("/no/such/directory");
    QTest::keyClick(window_, Qt::Key_Return);
    EXPECT_TRUE(value("hint", "text").toString().startsWith("cannot write /no/such/directory: "));
    QTest::keyClick(window_, Qt::Key_A, Qt::ControlModifier);
    type(path.toUtf8());
    click("confirm");
    EXPECT_TRUE(waitFor([&] { return value("message", "text") == "Saved as " + path; }));
    const auto recording = report::readRecordingFile(path.toStdString());
    EXPECT_EQ(std::get<report::Recording>(recording).reports.size(), 3U)
        << "not only the shown ones";
}

TEST_P(PanelWindow, TheLogFollowsItsEndUnlessTheUserHasScrolled)
{
    const auto add = [this](int lines) {
        for (int i = 0; i < lines; ++i)
            fake_.send(R"("event": "output", "report": "0300", "meaning": ["x"])");
    };
    const auto atEnd = [this] { return value("log", "atYEnd").toBool(); };
    add(1000);
    const int height = 1000 * item("log")->property("rowHeight").toInt();
    EXPECT_TRUE(waitFor([&] { return value("log", "contentHeight") == height && atEnd(); }));
    const QPoint where = placeOf("log").center();
    QWheelEvent wheelUp(where, window_->mapToGlobal(where), {}, {0, 240}, Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(window_, &wheelUp);
    EXPECT_TRUE(waitFor([&] { return !value("log", "moving").toBool() && !atEnd(); }));
    const QVariant position = value("log", "contentY");
    add(10);
    EXPECT_TRUE(waitFor([&] { return value("log", "count") == 1010; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(value("log", "contentY"), position);
    item("log")->forceActiveFocus();
    QTest::keyClick(window_, Qt::Key_End);
    add(10);
    EXPECT_TRUE(waitFor([&] { return value("log", "count") == 1020 && atEnd(); }));
}

TEST(PanelWindows, AreNumberedAndNotMoreThanAScreenCanHold)
{
    FakeBench fake;
    fake.devices = {};
    for (int number = 1; number <= 300; ++number)
        fake.devices.append(QJsonObject{{"number", number}, {"product", "p"}});
    panel::Bench bench(fake.socket());
    panel::Theme theme(Look::kLight);
    panel::PanelWindows windows(bench, theme);
    bench.start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return bench.isConnected(); }));
    ASSERT_TRUE(windows.open(std::nullopt));
    ASSERT_EQ(windows.windows().size(), panel::PanelWindows::kMaxWindows);
    EXPECT_EQ(windows.windows()[1]->title(), "p (2 of 300) - Kelprobe panel");
}

TEST(PanelProgram, EndsWithAReasonIfThereIsNothingToShow)
{
    FakeBench bench;
    const QStringList socket{"--socket", bench.socket()};
    const test::TempDirectory modules; // those in QML2_IMPORT_PATH are preferred
    const QString broken = QString::fromStdString(modules.path());
    ASSERT_TRUE(QDir(broken).mkpath("QtQuick/Layouts"));
    QFile description(broken + "/QtQuick/Layouts/qmldir");
    ASSERT_TRUE(description.open(QIODevice::WriteOnly));
    description.write("module QtQuick.Layouts\nplugin missing\n");
    description.close();
    const struct {
        QStringList arguments;
        QStringList environment; // "NAME", "VALUE"
        int status;
        QString error;
    } cases[] = {
        {{"--socket", "/no/bench"}, {"A", ""}, panel::kNoAccess,
            "kelprobe-panel: no bench at /no/bench: "},
        {socket + QStringList{"--device", "2"}, {"A", ""}, panel::kWrongUse,
            "kelprobe-panel: there is no device 2; the bench has 1\n"},
        {socket, {"DISPLAY", ":999"}, panel::kNoAccess,
            "kelprobe-panel: cannot open the display :999; "},
        {socket, {"QML2_IMPORT_PATH", broken}, panel::kNoAccess,
            "kelprobe-panel: cannot make the windows: "},
        {{"--help"}, {"A", ""}, panel::kNoAccess,
            "kelprobe-panel: standard output: No space left on device"},
    };
    for (const auto& [arguments, environment, status, error] : cases) {
        QProcess program;
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert(environment.at(0), environment.at(1));
        program.setProcessEnvironment(variables);
        program.setStandardOutputFile("/dev/full");
        program.start(KELPROBE_PANEL, arguments);
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return program.state() == QProcess::NotRunning; }, 30'000));
        EXPECT_EQ(program.exitCode(), status);
        const QString printed = program.readAllStandardError();
        EXPECT_TRUE(printed.startsWith(error)) << printed.toStdString();
        EXPECT_EQ(printed.count('\n'), 1) << printed.toStdString();
    }
}

TEST_P(PanelWindow, CtrlQEndsTheProgram)
{
    QTimer::singleShot(
        0, window_, [this] { QTest::keyClick(window_, Qt::Key_Q, Qt::ControlModifier); });
    QTimer::singleShot(10'000, window_, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QGuiApplication::exec(), 0);
}

} // namespace
