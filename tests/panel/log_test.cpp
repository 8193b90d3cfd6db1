// The log: its lines, bounds, filter, selection and recording.
#include "report/format/recording.h"
#include "tests/panel/fake_bench.h"
#include "tests/support/temp_directory.h"
#include "tools/panel/device.h"
#include "tools/panel/log_recording.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QtTest>
#include <gtest/gtest.h>

namespace {

using panel::EventLog;
using panel::LogEntry;
using panel::LogView;

std::optional<LogEntry> entryFor(const QByteArray& event)
{
    return panel::logEntryFor(
        QJsonDocument::fromJson("{\"time\": 1.5, " + event + '}').object(), "Label");
}

// An event and its line; an empty one if it has none.
constexpr const char* kLines[][2] = {
    {R"("event": "input", "report": "0301", "meaning": ["Hook Switch on"], "read": true)",
        "   1.500000  in   03 01        Hook Switch on"},
    {R"("event": "input", "report": "0309", "meaning": ["A on", "B off"], "read": false, "count": 3)",
        "   1.500000  in   03 09        A on, B off, 3 times (lost)"},
    {R"("event": "output", "report": "030800000000", "meaning": ["Ring on"], "lamps": {})",
        "   1.500000  out  03 08 00 00 00 00 Ring on"},
    {R"("event": "output", "report": "030000", "meaning": [])",
        "   1.500000  out  03 00 00     no change"},
    {R"("event": "feature", "report": "0502", "meaning": ["x"])",
        "   1.500000  out  05 02        feature report: x"},
    {R"("event": "write-refused", "report": "0305", "meaning": [])",
        "   1.500000  out  03 05        refused"},
    {R"("event": "claim-refused")", "   1.500000       claim refused"},
    {R"("event": "opened")", "   1.500000       opened by a program"},
    {R"("event": "fault", "name": "write", "armed": true)", "   1.500000       fault on: Label"},
    {R"("event": "lamp", "name": "ring", "state": "blink")", "   1.500000       Label lamp blinks"},
    {R"("event": "note", "text": "two\nlines \u202eback")", "   1.500000       two lines  back"},
    {R"("event": "something-new")", "   1.500000       something new"},
    {R"("event": "lamp", "name": "ring", "state": "on")", ""},
    {R"("event": "hook", "position": "off")", ""},
    {R"("event": 7)", ""},
    {R"("event": "opened", "time": 1e300)", ""},
};

TEST(PanelLog, HasALineForEachEventThatIsNotPartOfAnother)
{
    for (const auto& [event, line] : kLines) {
        const auto entry = entryFor(event);
        EXPECT_EQ(entry ? panel::lineText(*entry).toStdString() : "", line) << event;
    }
}

class PanelLogView : public testing::Test {
protected:
    void add(const char* bytes, const char* text, LogEntry::Kind kind = LogEntry::Kind::kOutput)
    {
        LogEntry entry;
        entry.kind = kind;
        entry.bytes = QByteArray::fromHex(bytes);
        entry.text = QString::fromUtf8(text);
        log_.append(entry);
    }
    void addLines(size_t count)
    {
        for (size_t i = 0; i < count; ++i)
            add("03", std::to_string(i).c_str());
        log_.flush();
    }
    // The texts that are shown.
    std::string shown()
    {
        QStringList texts;
        for (int row = 0; row < view_.rowCount(); ++row)
            texts.append(view_.index(row, 0).data(EventLog::kText).toString());
        return texts.join(' ').toStdString();
    }
    // The texts that are selected.
    std::string selected()
    {
        QStringList texts;
        for (const QString& line : view_.selectedText().split('\n', Qt::SkipEmptyParts))
            texts.append(line.mid(line.lastIndexOf(' ') + 1));
        return texts.join(' ').toStdString();
    }

    EventLog log_;
    LogView view_{log_};
};

TEST_F(PanelLogView, FiltersByTextBytesAndKind)
{
    add("030800", "Ring");
    add("0301", "Hook", LogEntry::Kind::kInput);
    add("0380", "ringing", LogEntry::Kind::kRefusedWrite);
    add("", "opened", LogEntry::Kind::kOther);
    log_.flush();
    const std::pair<const char*, const char*> cases[]
        = {{"", "Ring Hook ringing opened"}, {"RING", "Ring ringing"}, {"03 0", "Ring Hook"},
            {"0308", "Ring"}, {"opened", "opened"}, {"\\", ""}, {"in ", "Hook"}};
    for (const auto& [filter, expected] : cases) {
        view_.setFilter(filter);
        EXPECT_EQ(shown(), expected) << filter;
    }
    view_.setFilter({});
    const char* const kinds[] = {"Ring Hook ringing opened", "Hook", "Ring ringing", "opened"};
    for (const int show : {0, 1, 2, 3}) {
        view_.setShow(static_cast<LogView::Show>(show));
        EXPECT_EQ(shown(), kinds[show]);
    }
    EXPECT_EQ(view_.countText(), "1 of 4 lines");
    add("", "closed", LogEntry::Kind::kOther);
    log_.flush();
    EXPECT_EQ(shown(), "opened closed") << "the filter holds for new lines";
}

TEST_F(PanelLogView, SelectionStaysOnItsLines)
{
    EXPECT_EQ(view_.moveSelection(-1, false), -1);
    addLines(10);
    EXPECT_EQ(view_.moveSelection(-1, false), 9) << "the first step is to the end";
    view_.select(3, false);
    view_.select(5, true);
    EXPECT_EQ(selected(), "3 4 5");
    view_.select(1, true);
    EXPECT_EQ(selected(), "1 2 3") << "on the other side of the first";
    EXPECT_EQ(view_.moveSelection(1, true), 2);
    addLines(2);
    EXPECT_EQ(selected(), "2 3");
    view_.setFilter("2");
    EXPECT_EQ(selected(), "2") << "only what is shown";
    view_.setFilter({});
    EXPECT_EQ(view_.moveSelection(-100, false), 0);
    view_.select(100, false);
    view_.select(-1, false);
    EXPECT_EQ(selected(), "0") << "there are no such rows";
    view_.copySelection();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), view_.selectedText());
    view_.selectAll();
    EXPECT_EQ(selected(), "0 1 2 3 4 5 6 7 8 9 0 1");
    view_.clear();
    EXPECT_FALSE(view_.hasSelection());
    EXPECT_EQ(view_.currentLine(), "");
}

TEST_F(PanelLogView, HasBoundsAndKeepsTheSelection)
{
    addLines(EventLog::kMaxLines);
    EXPECT_EQ(view_.countText(), "20,000 lines");
    view_.select(1, false);
    view_.select(6, true);
    addLines(5);
    EXPECT_EQ(view_.rowCount(), static_cast<int>(EventLog::kMaxLines));
    EXPECT_EQ(view_.countText(), "latest 20,000 lines");
    EXPECT_EQ(selected(), "5 6") << "the others are gone";
    EXPECT_EQ(view_.firstSelected(), 6);
    addLines(2);
    EXPECT_FALSE(view_.hasSelection()) << "all of it is gone";
    EXPECT_EQ(view_.currentLine(), "");
    const std::string large(1'000'000, 'x'); // two bytes a character
    for (int i = 0; i < 40; ++i)
        add("03", large.c_str());
    log_.flush();
    EXPECT_LT(view_.rowCount(), 40);
    EXPECT_GT(view_.rowCount(), 10);
}

TEST_F(PanelLogView, AddsManyLinesAtOnce)
{
    int insertions = 0;
    QObject::connect(&view_, &QAbstractItemModel::rowsInserted, [&] { ++insertions; });
    for (int i = 0; i < 1000; ++i)
        add("0301", "x");
    EXPECT_EQ(view_.rowCount(), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view_.rowCount() == 1000; }));
    EXPECT_EQ(insertions, 1);
}

TEST(PanelRecording, HasTheReportsOfTheLog)
{
    const test::TempDirectory directory;
    const QString path = QString::fromStdString(directory.path() + "a.hid");
    panel::Device device(speakerphone());
    const char* const events[] = {R"("event": "opened", "time": 1)",
        R"("event": "output", "report": "030800", "time": 1.000002)",
        R"("event": "input", "report": "0301", "time": 1.000001)", // not in order
        R"("event": "write-refused", "report": "030500", "time": 2)",
        R"("event": "input", "report": "0302", "time": 2, "count": 2)",
        R"("event": "feature", "report": "0501", "time": 3)"};
    for (const char* const event : events)
        device.apply(
            QJsonDocument::fromJson(QByteArray("{\"device\": 1, ") + event + '}').object());
    ASSERT_EQ(device.saveRecording(path), "");
    const auto read = report::readRecordingFile(path.toStdString());
    const auto* const recording = std::get_if<report::Recording>(&read);
    ASSERT_TRUE(recording);
    EXPECT_EQ(recording->devices.at(0).name, "Kelprobe Simulated speakerphone");
    EXPECT_EQ(recording->devices.at(0).vendorId, 0x1209);
    EXPECT_EQ(recording->devices.at(0).descriptor.size(), 38U);
    std::string lines;
    for (const report::RecordedReport& report : recording->reports)
        lines += report::recordingLine(report);
    EXPECT_EQ(lines,
        "# output 000001.000002 3 03 08 00 -> 3\n"
        "E: 000001.000002 2 03 01\n"
        "# output 000002.000000 3 03 05 00 -> failed refused by the device\n"
        "E: 000002.000000 2 03 02\n"
        "E: 000002.000000 2 03 02\n"
        "# feature 000003.000000 2 05 01 -> 2\n");
}

TEST(PanelRecording, SaysWhereEventsAreMissing)
{
    panel::Device device(speakerphone());
    device.apply({{"event", "output"}, {"report", "0308"}, {"time", 1}});
    device.markMissingEvents();
    device.events().flush();
    EXPECT_EQ(panel::lineText(device.events().entries().back()),
        "   1.000000       events are missing here");
    const QByteArray text = panel::recordingText({}, device.events().entries()).value_or("");
    EXPECT_TRUE(text.endsWith("-> 2\n# events are missing here\n")) << text.toStdString();
}

TEST(PanelRecording, IsNotWrittenInPart)
{
    const test::TempDirectory directory;
    panel::Device device(speakerphone());
    const QString missing = QString::fromStdString(directory.path() + "no/a.hid");
    EXPECT_EQ(
        device.saveRecording(missing), "cannot write " + missing + ": No such file or directory");
    EXPECT_NE(device.saveRecording({}), "");
    EXPECT_EQ(device.fullPath("~/a.hid"), QDir::homePath() + "/a.hid");
    EXPECT_EQ(device.fullPath("a.hid"), QDir::currentPath() + "/a.hid");
    EXPECT_EQ(device.fullPath(""), "");
    EXPECT_EQ(device.saveRecording("/dev/full"), "cannot write /dev/full: No space left on device");
    LogEntry flood;
    flood.kind = LogEntry::Kind::kInput;
    flood.bytes = QByteArray(64, 'x');
    flood.count = 65'536;
    const std::deque<LogEntry> floods(6, flood);
    EXPECT_EQ(panel::saveRecording(missing, {}, floods),
        "cannot write " + missing + ": it would have more than 64 MiB");
}

} // namespace
