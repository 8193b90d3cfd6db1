// The panel without a window, as a client of a bench.
#include "tests/panel/fake_bench.h"
#include "tools/panel/bench.h"

#include <QtTest>
#include <gtest/gtest.h>

#include <optional>

namespace {

using panel::Bench;
using panel::Device;

class PanelBench : public testing::Test {
protected:
    void connectPanel()
    {
        bench_.emplace(fake_.socket());
        QObject::connect(&*bench_, &Bench::lost, [this](const QString& why) { lost_ = why; });
        bench_->start();
        ASSERT_TRUE(waitFor([this] { return bench_->isConnected() || !lost_.isEmpty(); }));
    }
    Device& device() { return *bench_->devices().at(0); }

    template <class Condition>
    static bool waitFor(Condition condition)
    {
        return QTest::qWaitFor(condition, 10'000);
    }
    // Waits until everything sent so far has arrived.
    void settle()
    {
        static int settled = 0;
        const QString mark = QStringLiteral("settled %1").arg(++settled);
        fake_.send("\"event\": \"note\", \"text\": \"" + mark.toUtf8() + '"');
        EXPECT_TRUE(waitFor([&] { return lines().value(lines().size() - 1) == mark; }));
    }
    // The texts of the log.
    QStringList lines()
    {
        device().events().flush();
        QStringList texts;
        for (const panel::LogEntry& entry : device().events().entries())
            texts.append(entry.text);
        return texts;
    }
    // The values of one key of all parts, joined by blanks.
    static std::string all(const panel::PartModel& parts, const char* key)
    {
        QStringList values;
        for (const QJsonObject& part : parts.parts())
            values.append(part[QLatin1String(key)].toVariant().toString());
        return values.join(' ').toStdString();
    }
    // Everything that the window shows of the state.
    std::string look()
    {
        return std::string(device().isPlugged() ? "plugged" : "unplugged")
            + (device().isOpen() ? ", open | " : ", closed | ")
            + all(*device().buttons(), "pressed") + " | " + all(*device().lamps(), "state") + " | "
            + all(*device().faults(), "armed");
    }

    FakeBench fake_;
    std::optional<Bench> bench_;
    QString lost_;
};

// An event, and what is shown after it.
constexpr const char* kEvents[][2] = {
    {"\"event\": \"opened\"",
        "plugged, open | false false false false false | off off off off | false false false "
        "false"},
    {"\"event\": \"lamp\", \"name\": \"ring\", \"state\": \"blink\"",
        "plugged, open | false false false false false | off off blink off | false false false "
        "false"},
    {"\"event\": \"lamp\", \"name\": \"ring\", \"state\": \"off\"",
        "plugged, open | false false false false false | off off off off | false false false "
        "false"},
    {"\"event\": \"hook\", \"position\": \"off\"",
        "plugged, open | true false false false false | off off off off | false false false false"},
    {"\"event\": \"fault\", \"name\": \"write\", \"armed\": true",
        "plugged, open | true false false false false | off off off off | false true false false"},
    {"\"event\": \"closed\"",
        "plugged, closed | true false false false false | off off off off | false true false "
        "false"},
    {"\"event\": \"unplugged\"",
        "unplugged, closed | true false false false false | off off off off | false true false "
        "false"},
    {"\"event\": \"plugged\"",
        "plugged, closed | true false false false false | off off off off | false true false "
        "false"},
    {"\"event\": \"hook\", \"position\": \"on\"",
        "plugged, closed | false false false false false | off off off off | false true false "
        "false"},
};

TEST_F(PanelBench, ShowsTheDeviceAndWhatHappensToIt)
{
    connectPanel();
    EXPECT_EQ(device().name(), "Kelprobe Simulated speakerphone");
    EXPECT_EQ(device().details(), QString("1209:0001 · speakerphone · S0001"));
    EXPECT_EQ(look(),
        "plugged, closed | false false false false false | off off off off | false false false "
        "false");
    for (const auto& [event, after] : kEvents) {
        fake_.send(event);
        settle();
        EXPECT_EQ(look(), after) << event;
    }
}

TEST_F(PanelBench, PutsTheButtonsOfTheTelephonyPageFirst)
{
    QJsonObject state = speakerphone();
    QJsonArray buttons = state["buttons"].toArray();
    buttons.prepend(buttons.takeAt(3));
    state["buttons"] = buttons;
    fake_.devices[0] = state;
    connectPanel();
    EXPECT_EQ(
        all(*device().buttons(), "name"), "hook mute flash volume-increment volume-decrement");
}

TEST_F(PanelBench, TakesARelativePathOfTheSocket)
{
    const QString before = QDir::currentPath();
    const QFileInfo socket(fake_.socket());
    ASSERT_TRUE(QDir::setCurrent(socket.path()));
    Bench bench(socket.fileName());
    QDir::setCurrent(before);
    bench.start();
    EXPECT_TRUE(waitFor([&] { return bench.isConnected(); }));
}

TEST_F(PanelBench, SendsCommandsForItsDevice)
{
    fake_.devices.append(QJsonObject{{"number", 7}});
    connectPanel();
    Device& second = *bench_->devices().at(1);
    EXPECT_EQ(second.name(), "Device 7") << "it has no name";
    device().setPressed("mute", true);
    device().setPressed("mute", false);
    device().setPressed("mute", false); // as a window does when the button goes
    device().setPressed("hook", true);
    device().setPressed("hook", false);
    device().setPlugged(false);
    device().setPlugged(true);
    device().setFault("claim", true, "2");
    device().setFault("open", true, "");
    device().setFault("open", false, "2");
    second.setPlugged(false);
    second.sendReport(" 03  01 ");
    second.flood("800");
    const QStringList expected{"1: press mute --hold", "1: release mute", "1: press hook --hold",
        "1: release hook", "1: unplug", "1: replug", "1: fault claim 2", "1: fault open",
        "1: fault open off", "7: unplug", "7: raw 03 01", "7: fault flood 800"};
    EXPECT_TRUE(waitFor([&] { return fake_.commands.size() == expected.size(); }));
    EXPECT_EQ(fake_.commands, expected);
}

TEST_F(PanelBench, LetsGoOfHeldButtonsButNotOfTheHook)
{
    connectPanel();
    device().setPressed("hook", true);
    device().setPressed("flash", true);
    device().releaseAll();
    device().releaseAll();
    EXPECT_TRUE(waitFor([&] { return fake_.commands.size() >= 3; }));
    EXPECT_EQ(fake_.commands,
        (QStringList{"1: press hook --hold", "1: press flash --hold", "1: release flash"}));
}

TEST_F(PanelBench, ShowsButtonsThatOthersPress)
{
    connectPanel();
    QJsonObject state = speakerphone();
    QJsonArray buttons = state["buttons"].toArray();
    buttons[1] = QJsonObject{
        {"name", "mute"}, {"label", "Phone Mute"}, {"kind", "button"}, {"pressed", true}};
    state["buttons"] = buttons;
    fake_.devices[0] = state;
    int resets = 0;
    QObject::connect(device().buttons(), &QAbstractItemModel::modelReset, [&] { ++resets; });
    for (int i = 0; i < 200; ++i)
        fake_.send(R"("event": "input", "report": "0309", "meaning": ["Phone Mute on"])");
    EXPECT_TRUE(waitFor([&] { return device().buttons()->value("mute", "pressed").toBool(); }));
    EXPECT_EQ(resets, 0) << "a button that is being pressed must stay";
    EXPECT_LT(fake_.questions(), 20) << "not for each report";
}

TEST_F(PanelBench, SaysWhyACommandWasRefusedUntilTheNext)
{
    connectPanel();
    fake_.nextError = "the device\nis unplugged";
    device().setPressed("mute", true);
    EXPECT_TRUE(waitFor([&] { return !bench_->message().isEmpty(); }));
    EXPECT_EQ(bench_->message(), "the device is unplugged");
    EXPECT_TRUE(waitFor([&] { // it is not down on the device
        return !device().buttons()->value("mute", "pressed").toBool();
    }));
    device().setPressed("mute", false);
    EXPECT_EQ(bench_->message(), "");
    fake_.nextError = QString(10'000, 'x');
    device().setPressed("mute", true);
    EXPECT_TRUE(waitFor([&] { return !bench_->message().isEmpty(); }));
    EXPECT_LT(bench_->message().size(), 1000);
    EXPECT_TRUE(waitFor([&] { return bench_->message().isEmpty(); })) << "after some seconds";
}

TEST_F(PanelBench, ReconnectsIfTheBenchDropsItsEvents)
{
    connectPanel();
    fake_.dropEvents();
    fake_.setLamp("ring", "on"); // nobody receives the event
    EXPECT_TRUE(waitFor([&] { return fake_.hasEvents(); }));
    fake_.setLamp("hold", "on");
    settle();
    EXPECT_EQ(all(*device().lamps(), "state"), "off off on on");
    EXPECT_EQ(bench_->message(), "Too many events at once: some are missing in the log.");
    EXPECT_EQ(lines().value(0), "events are missing here");
    EXPECT_TRUE(bench_->isConnected());
    EXPECT_EQ(bench_->devices().size(), 1U);
}

TEST_F(PanelBench, KeepsTheLogWhenTheBenchEnds)
{
    connectPanel();
    fake_.send("\"event\": \"opened\"");
    settle();
    fake_.end();
    EXPECT_TRUE(waitFor([&] { return !lost_.isEmpty(); }));
    EXPECT_FALSE(bench_->isConnected());
    EXPECT_EQ(lines().value(0), "opened by a program");
    device().setPressed("mute", true); // without effect
}

TEST_F(PanelBench, AsksForTheDevicesOnceAlthoughAnotherCommandIsRefused)
{
    panel::BenchClient client(fake_.socket());
    int answers = 0;
    QObject::connect(&client, &panel::BenchClient::started, [&] {
        fake_.nextError = "no";
        client.command("mute");
        client.refresh();
    });
    QObject::connect(&client, &panel::BenchClient::refused, &client, &panel::BenchClient::refresh);
    QObject::connect(&client, &panel::BenchClient::refreshed, [&] {
        if (++answers == 1)
            client.command("last");
    });
    client.start();
    EXPECT_TRUE(waitFor([&] { return fake_.commands.contains("last"); }));
    EXPECT_EQ(fake_.questions(), 1);
}

TEST_F(PanelBench, EndsTheConnectionIfTheBenchIsNone)
{
    for (const QByteArray& line :
        {QByteArray("hello"), QByteArray("[1]"), QByteArray("{"), QByteArray(5'000'000, 'x')}) {
        connectPanel();
        fake_.sendLine(line);
        EXPECT_TRUE(waitFor([&] { return !lost_.isEmpty(); })) << line.left(9).toStdString();
        EXPECT_FALSE(bench_->isConnected());
        lost_.clear();
    }
    fake_.end();
    connectPanel();
    EXPECT_EQ(lost_, "there is no such socket");
}

TEST_F(PanelBench, ShowsOnlyPartsThatAreValid)
{
    const QString label(16'000, 'x');
    fake_.devices[0] = QJsonObject{{"number", 1},
        {"lamps", QJsonArray{QJsonObject{{"name", 5}}, 7, QJsonObject{{"name", "ring"}}}},
        {"faults", QJsonArray{QJsonObject{{"name", "a"}, {"label", label}, {"armed", "yes"}}}}};
    connectPanel();
    const auto shown = [](const panel::PartModel& parts) {
        QVariantList values;
        const auto roles = parts.roleNames();
        for (int role = Qt::UserRole; role < Qt::UserRole + roles.size(); ++role)
            values.append(parts.data(parts.index(0), role));
        return values;
    };
    EXPECT_EQ(device().lamps()->rowCount(), 1);
    EXPECT_EQ(shown(*device().lamps()), (QVariantList{"ring", "", "", ""}));
    const QVariantList fault = shown(*device().faults());
    EXPECT_EQ(fault.value(1).toString().size(), 101) << "with an ellipsis";
    EXPECT_EQ(fault.mid(2), (QVariantList{false, false}));
}

TEST_F(PanelBench, IgnoresEventsThatItDoesNotUnderstand)
{
    connectPanel();
    const std::string before = look();
    for (const char* const event : {"\"event\": 5", "\"event\": \"lamp\", \"name\": \"no\"",
             "\"event\": \"fault\"", "\"event\": \"hook\", \"device\": 9, \"position\": \"off\"",
             "\"event\": \"lamp\", \"name\": {}, \"state\": [\"on\"]"})
        fake_.send(event);
    fake_.sendLine("{}");
    fake_.sendLine(R"({"event": "closed", "device": 1, "time": -1})");
    settle();
    EXPECT_EQ(look(), before);
    EXPECT_EQ(lines().size(), 2) << "a fault without a name, and the note";
}

} // namespace
