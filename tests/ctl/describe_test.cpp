// kelprobectl describe as a process, with files and simulated devices.
#include "hid/model/BuiltInDescriptor.h"
#include "hid/model/DescriptorDump.h"
#include "hid/model/Root.h"
#include "tests/ctl/ctl_bus_test.h"
#include "tests/support/device_file.h"

#include <json/json.h>

namespace {

const std::string kDevices = KELPROBE_TEST_DEVICES "/";

class Describe : public CtlBusTest {
protected:
    // Runs describe. Its standard output and standard error have to contain these texts.
    void expect(const std::string& arguments, int status, std::initializer_list<std::string> texts)
    {
        EXPECT_EQ(run("describe " + arguments), status) << arguments << '\n' << err_;
        for (const std::string& text : texts)
            EXPECT_NE((out_ + err_).find(text), std::string::npos)
                << arguments << ": no " << text << " in\n"
                << out_ << err_;
        if (status != 0) {
            EXPECT_EQ(out_, "") << arguments;
            EXPECT_TRUE(err_.starts_with("kelprobectl: ")) << err_;
            EXPECT_EQ(err_.find('\n'), err_.size() - 1) << err_;
        }
    }

    Json::Value json(const std::string& arguments)
    {
        EXPECT_EQ(run("describe --json " + arguments), 0) << err_;
        Json::Value value;
        std::istringstream(out_) >> value;
        return value;
    }

    std::string write(const std::string& name, std::string_view content)
    {
        return files_.file(name, content);
    }

    const test::TempDirectory files_;
};

TEST_F(Describe, ExplainsFiles)
{
    expect(kDevices + "046d-0944.hex", 0,
        {"046d-0944.hex: 246 bytes", "\nItems\n", "  0x00bd  09 05           Usage (Headset)\n",
            "\nReports\n", "  Input report 8: 2 bytes with the id\n    0           1 bit",
            "Phone Mute, relative            Headset\n", "    2..7        6 x 1 bit     padding\n",
            "  Hook Switch     08 02\n", "  Mute LED        none        no-off-hook-led\n",
            "  - No Ring LED: nothing"});
    EXPECT_LT(out_.find("\nReports\n"), out_.find("\nControls")) << "the controls come last";
    expect(kDevices + "095d-9201.hex --controls", 0,
        {"Hook Switch, Phone Mute, Flash and Off-Hook LED (other-collection):\n"
         "    It is in the collection Phone."});
    EXPECT_EQ(out_.find("Items"), std::string::npos);
    expect(kDevices + "0b0e-0307.hex --layout", 0,
        {"7..10       4 bits        array of ", "Headset > Telephony Key Pad\n"});
    expect(write("open.hex", "050b 0905 a101 9501 8102"), 0,
        {"Problems of the descriptor\n  0x0004  Collection without its end"});
}

TEST_F(Describe, PrintsTheTreeOfTheStackAndNothingElse)
{
    const auto bytes = test::deviceDescriptor("047f-c056");
    KX::Root root;
    root.Parse(bytes);
    expect(std::string(KELPROBE_TEST_PROFILES) + "/047f-c056.hex --tree", 0, {});
    EXPECT_EQ(out_, KX::DescriptorText(root, bytes));
    EXPECT_EQ(err_, "");
}

TEST_F(Describe, GivesJson)
{
    const Json::Value value = json(kDevices + "046d-0944.hex");
    EXPECT_EQ(value["source"]["bytes"], 246);
    EXPECT_EQ(value["source"]["device"], Json::Value());
    EXPECT_EQ(value["items"][0]["bytes"], "0600ff");
    EXPECT_EQ(value["controls"].getMemberNames().size(), 8u);
    EXPECT_EQ(value["controls"]["hookSwitch"]["report"], "0802");
    EXPECT_EQ(value["controls"]["hookSwitch"]["reason"], Json::Value());
    EXPECT_EQ(value["controls"]["mute"]["report"], Json::Value());
    EXPECT_EQ(value["controls"]["mute"]["reason"], "no-off-hook-led");
    EXPECT_EQ(value["meeting"].size(), 4u);
    EXPECT_EQ(value["problems"], Json::Value(Json::arrayValue));
    const Json::Value& report = value["reports"][1]; // inputs first, by id
    EXPECT_EQ(report["kind"], "input");
    EXPECT_EQ(report["id"], 8);
    EXPECT_EQ(report["bytes"], 2);
    EXPECT_EQ(report["fields"][1]["bitOffset"], 1);
    EXPECT_EQ(report["fields"][1]["usages"][0]["id"], 0x20);
    const Json::Value& collection
        = value["collections"][report["fields"][1]["collection"].asUInt()];
    EXPECT_EQ(collection["usage"]["page"], 0x0b);
    EXPECT_EQ(collection["usage"]["id"], 0x05);
    const Json::Value noPage = json(write("nopage.hex", "1900 2907 1500 2501 7501 9508 8102"));
    EXPECT_EQ(noPage["reports"][0]["fields"][0]["usages"][0]["page"], 0);
}

// All formats are tested with their readers.
TEST_F(Describe, ChoosesADescriptorOfAFile)
{
    const std::string file = write("dump",
        "001:005:000:DESCRIPTOR 1.000000\n 05 0C 09 01 A1 01 C0\n\n"
        "001:005:003:DESCRIPTOR 1.000000\n 05 0B 09 05 A1 01 75 01 95 01 09 20 81 02 C0\n");
    expect(file, 2,
        {"has 2 descriptors; choose one with --descriptor: 1: bus 001, device 005, interface 000; "
         "2: bus 001, device 005, interface 003"});
    expect(file + " --descriptor 2", 0,
        {"dump, bus 001, device 005, interface 003: 15 bytes", "Hook Switch     01\n"});
    expect(file + " --descriptor 3", 2, {"has no descriptor 3; choose one"});
    expect(file + " --descriptor 0", 2, {"has no descriptor 0; choose one"});
    EXPECT_EQ(run("describe --descriptor -1 " + file), 2);
    EXPECT_NE(err_.find("--descriptor: -1 is not a number from 1"), std::string::npos) << err_;
}

TEST_F(Describe, RefusesBadInput)
{
    expect(files_.path() + "none", 3, {"none: ", "kelprobectl list"});
    expect(files_.path(), 3, {files_.path()});
    expect(write("empty", ""), 2, {"empty"});
    expect(write("words", "05 0b zz"), 2, {"words:1:7: "});
    expect(write("binary",
               std::string_view("\x7f"
                                "ELF\x02\x01\x01\0",
                   8)),
        2, {"binary"});
    expect(write("huge", std::string(200'000, '0')), 2, {"huge"});
    expect(write("hostile\x1b[31m", "zz"), 2, {"hostile\\x1b[31m:1:1"});
    expect("", 3, {"kelprobectl: "}); // no device
    expect("1234:5678", 3, {"kelprobectl: "});
    expect("1234:5678 --descriptor 1", 2, {"--descriptor is for files"});
    expect("--tree --json " + kDevices + "046d-0944.hex", 2, {"choose one"});
    expect("> /dev/full " + kDevices + "046d-0944.hex", 3, {"standard output"});
    expect("> /dev/full --tree " + kDevices + "046d-0944.hex", 3, {"standard output"});
}

TEST_F(Describe, ExplainsDevices)
{
    auto& device = plug("webcam");
    expect("", 0, {"1209:0003 Kelprobe Simulated webcam: ", "Mute LED        none        no-off"});
    EXPECT_TRUE(device.driverBound());
    plug("led-per-report");
    expect("047f:c056", 0, {"047f:c056 ", "  - The Ring LED is in Output report 24, the Off-Hook"});
    EXPECT_EQ(json("047f:c056")["source"]["device"]["ids"], "047f:c056");
    plug("built-in");
    expect("0b0e:0410", 0, {"It uses a built-in one, which is the same."});
    plug("webcam");
    EXPECT_EQ(json("4")["source"]["remarks"].size(), 1u) << "another interface has the same ids";
    expect("./1209:0003", 3, {"./1209:0003: "});
}

TEST_F(Describe, UsesTheBuiltInDescriptorAsTheStackDoes)
{
    sim::UsbDeviceInfo info = sim::findProfile("built-in")->info;
    info.controls().reportDescriptor = test::bytesFromHex("050b 0905 a101 7501 9508 0920 8102 c0");
    plug(info);
    const Json::Value value = json("");
    EXPECT_EQ(value["controls"]["hookSwitch"]["report"], "030100");
    EXPECT_EQ(value["controls"]["hookSwitch"]["notes"][0]["word"], "other-report");
    EXPECT_NE(value["source"]["remarks"][0].asString().find("different"), std::string::npos);
    EXPECT_NE(value["meeting"][1].asString().find("never recognises"), std::string::npos);
    expect("--tree", 0, {});
    KX::Root root;
    root.Parse(KX::kBuiltInDescriptor);
    EXPECT_EQ(out_, KX::DescriptorText(root, KX::kBuiltInDescriptor));
    EXPECT_NE(err_.find("kelprobectl: Kelprobe does not read the descriptor"), std::string::npos);
}

} // namespace
