// kelprobectl monitor as a process.
#include "report/format/recording.h"
#include "tests/ctl/ctl_bus_test.h"
#include "tools/ctl/traffic/recording_file.h"

#include <json/json.h>

#include <sstream>

namespace {

using report::RecordedReport;

const sim::Bytes kOffHook{3, 1, 0};
const sim::Bytes kOnHook{3, 0, 0};

class Monitor : public CtlBusTest {
protected:
    using Texts = std::vector<std::string>;

    // Waits until standard error has the texts, in this order.
    [[nodiscard]] bool says(const Texts& texts) const
    {
        return eventually([&] { return saysNow(texts); });
    }

    [[nodiscard]] bool saysNow(const Texts& texts) const
    {
        const std::string all = test::content(errorFile());
        size_t end = 0;
        for (const std::string& text : texts) {
            const size_t found = all.find(text, end);
            if (found == std::string::npos)
                return false;
            end = found + text.size();
        }
        return true;
    }

    // The next line without its time.
    static std::string report(CtlProcess& monitor)
    {
        constexpr size_t kTimeWidth = 11;
        return monitor.line().erase(0, kTimeWidth);
    }

    const test::TempDirectory files_;
};

TEST_F(Monitor, PrintsReportsAndMarksWhatChanged)
{
    auto& device = plug();
    CtlProcess monitor("monitor", errorFile());
    ASSERT_TRUE(says({"Input reports of 1209:0001 "}));
    for (const Bytes& report : {kOffHook, Bytes{3, 9, 0}, kOffHook, kOnHook, Bytes{9}})
        EXPECT_TRUE(device.inject(report));
    EXPECT_EQ(report(monitor), "03 01 00       Hook Switch on*");
    EXPECT_EQ(report(monitor), "03 09 00       Hook Switch on, Phone Mute on*");
    EXPECT_EQ(report(monitor), "03 01 00       Hook Switch on, Phone Mute off*");
    EXPECT_EQ(report(monitor), "03 00 00       Hook Switch off*");
    EXPECT_EQ(report(monitor), "09             unknown input report 9*");
    EXPECT_EQ(monitor.end(SIGINT), 0);
    EXPECT_TRUE(says({"\n5 reports\n"}));
    EXPECT_TRUE(device.driverBound());
}

TEST_F(Monitor, EndsWhenTheDeviceHasGone)
{
    EXPECT_EQ(run("monitor"), 3);
    auto& device = plug();
    const std::string file = files_.path() + "recording";
    CtlProcess monitor("monitor --json --record " + file, errorFile());
    ASSERT_TRUE(says({"Input reports"}));
    EXPECT_TRUE(device.inject(kOffHook));
    EXPECT_NE(monitor.line().find(R"("opened")"), std::string::npos);
    Json::Value json;
    std::istringstream(monitor.line()) >> json;
    EXPECT_EQ(json["report"], "030100");
    EXPECT_EQ(json["changed"][0], "Hook Switch on");
    device.unplug();
    EXPECT_NE(monitor.rest().find(R"({"event":"end","reports":1})"), std::string::npos);
    EXPECT_EQ(monitor.end(), 3);
    EXPECT_TRUE(says({"kelprobectl: 1209:0001 has gone; --wait waits until it is back\n"}));

    const auto result = report::readRecordingFile(file);
    const auto& recording = std::get<report::Recording>(result);
    EXPECT_EQ(recording.devices.at(0).descriptor, device.info().controls().reportDescriptor);
    ASSERT_EQ(recording.reports.size(), 1u);
    EXPECT_EQ(recording.reports[0].bytes, kOffHook);
}

TEST_F(Monitor, WaitsForTheDevice)
{
    CtlProcess monitor("monitor --wait", errorFile());
    ASSERT_TRUE(says({"Waiting for the device"}));
    auto& device = plug();
    Texts story{"Waiting"};
    const auto saysNext = [&](const char* text) {
        story.emplace_back(text);
        return says(story);
    };
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(saysNext("Input reports"));
        EXPECT_TRUE(device.inject(kOffHook));
        EXPECT_EQ(report(monitor), "03 01 00       Hook Switch on*");
        device.unplug();
        ASSERT_TRUE(saysNext("1209:0001 has gone.\nWaiting"));
        device.plug();
    }
    ASSERT_TRUE(saysNext("Input reports"));
    EXPECT_EQ(monitor.end(SIGTERM), 0);
    EXPECT_TRUE(eventually([&] { return device.driverBound(); }));
}

TEST_F(Monitor, WaitsUntilTheDeviceIsFree)
{
    auto& device = plug();
    device.faults().refuseClaim.arm();
    CtlProcess monitor("monitor --wait 1209:0001", errorFile());
    ASSERT_TRUE(says({"Waiting", "\n1209:0001: another program has the interface; "}));
    device.faults().refuseClaim.arm(0);
    EXPECT_TRUE(says({"Waiting", "\nInput reports of 1209:0001"}));
    EXPECT_EQ(monitor.end(SIGINT), 0);
}

TEST_F(Monitor, LosesNothingInBursts)
{
    constexpr int kBursts = 40;
    constexpr int kBurst = 25; // hidapi keeps 30
    auto& device = plug();
    CtlProcess monitor("monitor", errorFile());
    ASSERT_TRUE(says({"Input reports"}));
    for (int burst = 0; burst < kBursts; ++burst) {
        for (int i = 0; i < kBurst; ++i)
            ASSERT_TRUE(device.inject(i % 2 ? kOnHook : kOffHook));
        for (int i = 0; i < kBurst; ++i)
            EXPECT_EQ(report(monitor).substr(0, 8), i % 2 ? "03 00 00" : "03 01 00");
    }
    EXPECT_EQ(monitor.end(SIGINT), 0);
    EXPECT_TRUE(says({"\n1000 reports\n"}));
}

TEST_F(Monitor, LeavesNoFileAndFreesTheDeviceWhenItsReaderHasGone)
{
    auto& device = plug();
    const std::string file = files_.path() + "recording";
    const std::string command
        = std::string(KELPROBECTL) + " monitor --record " + file + " 2>" + errorFile() + " | true";
    FILE* const pipe = popen(command.c_str(), "r");
    EXPECT_TRUE(eventually([&] {
        (void)device.inject(kOffHook);
        return saysNow({"standard output: Broken pipe"});
    }));
    pclose(pipe);
    EXPECT_TRUE(eventually([&] { return device.driverBound(); }));
    EXPECT_TRUE(test::filesIn(files_.path()).empty());
}

TEST(RecordingFile, SeparatesDevicesAndKeepsTimesInOrder)
{
    const test::TempDirectory files;
    const std::string path = files.path() + "recording";
    ctl::RecordingFile file(path);
    const report::RecordedDevice one{.name = "one", .physicalPath = "1-1:1.0", .descriptor = {}};
    const report::RecordedDevice two{.name = "two", .physicalPath = "1-2:1.0", .descriptor = {}};
    EXPECT_EQ(file.addDevice(one), 0u);
    file.add({.time = std::chrono::microseconds(20), .bytes = {1}});
    EXPECT_EQ(file.addDevice(two), 1u);
    file.add({.device = 1, .time = std::chrono::microseconds(10), .bytes = {2}});
    EXPECT_EQ(file.addDevice(one), 0u) << "again";
    file.add({.time = std::chrono::microseconds(30), .bytes = {3}});
    EXPECT_TRUE(file.finish());
    const auto result = report::readRecordingFile(path);
    const auto& recording = std::get<report::Recording>(result);
    ASSERT_EQ(recording.devices.size(), 2u);
    EXPECT_EQ(recording.devices[1].name, "two");
    std::string story;
    for (const RecordedReport& report : recording.reports)
        story += std::to_string(report.device) + '@' + std::to_string(report.time.count()) + ' ';
    EXPECT_EQ(story, "0@20 1@20 0@30 ");
}

} // namespace
