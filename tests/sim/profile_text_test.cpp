// Profiles as text, right and wrong.
#include "sim/profile/profile_text.h"
#include "sim/profile/profiles.h"
#include "tests/sim/schema.h"
#include "tests/support/temp_directory.h"

#include <json/reader.h>

#include <gtest/gtest.h>

namespace {

Json::Value json(const std::string& text)
{
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

const test::Schema& schema()
{
    static const test::Schema schema(json(test::content(KELPROBE_PROFILE_SCHEMA)));
    return schema;
}

// The profile, or its mistakes.
std::variant<sim::Profile, std::string> parse(const std::string& text)
{
    try {
        return sim::parseProfile(text, "p.json", [](const std::string& name) {
            return report::readDescriptorFile(KELPROBE_TEST_PROFILES "/" + name);
        });
    } catch (const sim::ProfileError& error) {
        return error.what();
    }
}

std::string repeated(const std::string& text, size_t times)
{
    std::string all;
    for (size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

const std::string kHead = R"({"vendorId": "1209", "productId": "0001", )";
const std::string kInterfaces = R"("interfaces": [{"reportDescriptor": "05 0b"}])";

TEST(ProfileText, IsWrittenAsItWasReadAndConformsToTheSchema)
{
    sim::Profile wild = *sim::findProfile("headset");
    wild.description = "\u00e9\"";
    wild.info.manufacturer = u"\x1b[31mRed\n\u202e\0end";
    wild.info.product = u"\xd800";
    wild.info.serialNumber = std::u16string(126, u'S');
    wild.info.speed = sim::UsbSpeed::kLow;
    wild.info.interfaces[3].maxPacketSize = wild.info.interfaces[4].maxPacketSize = 8;
    wild.info.interfaces[3].classDescriptors.emplace({sim::ClassDescriptor{0x23, 7}});
    wild.info.interfaces[4].subclass = sim::InterfaceInfo::kBoot;
    wild.info.behaviour = {sim::HookSwitch::kMomentary, {"ring"}, true,
        {{"mute", false, {{1, 2}, {}}}}, {{3}}, -7, std::chrono::milliseconds(60'000)};
    std::vector<sim::Profile> all(sim::profiles().begin(), sim::profiles().end());
    all.push_back(wild);
    for (const sim::Profile& profile : all) {
        const std::string text = sim::writeProfile(profile);
        EXPECT_TRUE(schema().accepts(json(text))) << text;
        EXPECT_TRUE(sim::isProfile(text));
        const auto again = parse(text);
        ASSERT_TRUE(std::holds_alternative<sim::Profile>(again)) << std::get<std::string>(again);
        EXPECT_EQ(std::get<sim::Profile>(again).info, profile.info) << text;
        EXPECT_EQ(std::get<sim::Profile>(again).description, profile.description);
        EXPECT_EQ(std::get<sim::Profile>(again).name, "p");
    }
    for (const auto& [file, text] : test::filesIn(KELPROBE_TEST_PROFILES))
        EXPECT_TRUE(!file.ends_with(".json") || schema().accepts(json(text))) << file;
}

TEST(ProfileText, MayBeAsLongAsTheLimits)
{
    const std::string text = kHead + kInterfaces + R"(, "description": ")"
        + repeated("\u00e9", 1000) + R"(", "product": {"utf16": ")" + repeated("0041 ", 126)
        + R"("}, "serialNumber": ")" + repeated("\U0001f514", 63)
        + R"(", "behaviour": {"onOpen": [")" + repeated("00 ", 4096) + "\", \"\"]}}";
    const auto result = parse(text);
    EXPECT_TRUE(std::holds_alternative<sim::Profile>(result)) << std::get<std::string>(result);
    EXPECT_TRUE(schema().accepts(json(text)));
}

// Those that the schema can express are wrong for it, too.
TEST(ProfileText, EachMistakeIsNamedWithItsKey)
{
    const std::string descriptor = R"("reportDescriptor": "05 0b")";
    const struct {
        std::string text;
        const char* mistake;
        bool inSchema = true;
    } cases[] = {
        {"{}", R"(vendorId: expected four hexadecimal digits in quotation marks, found no such key
p.json: productId: expected four hexadecimal digits in quotation marks, found no such key
p.json: interfaces: expected an array of interfaces, found no such key)"},
        {"[]", "expected an object, found an array of 0"},
        {kHead + kInterfaces + R"(, "speeed": "low"})", "speeed: unknown key; did you mean speed?"},
        {kHead + kInterfaces + R"(, "x": 1})", "x: unknown key; expected one of $schema, "},
        {R"({"vendorId": 4617, "productId": "12345", )" + kInterfaces + "}",
            R"(vendorId: expected four hexadecimal digits in quotation marks, found 4617
p.json: productId: expected four hexadecimal digits in quotation marks, found "12345")"},
        {kHead + kInterfaces + R"(, "speed": "super"})",
            R"(speed: expected "low", "full" or "high", found "super")"},
        {kHead + kInterfaces + R"(, "product": 1})",
            "product: expected a text of at most 126 UTF-16 units or"},
        {kHead + kInterfaces + R"(, "product": ")" + std::string(127, 'x') + R"("})",
            "product: expected a text of at most 126 UTF-16 units or"},
        {kHead + kInterfaces + R"(, "product": {"utf16": "d8"}})", "product: expected a text"},
        {kHead + kInterfaces + R"(, "product": {"utf16": ")" + repeated("0041", 127) + "\"}}",
            "product: expected a text"},
        {kHead + kInterfaces + R"(, "product": ")" + repeated("\U0001f514", 64) + "\"}",
            "product: expected a text of at most 126 UTF-16 units", false},
        {kHead + kInterfaces + R"(, "description": ")" + repeated("\u00e9", 1001) + "\"}",
            "description: expected one line of at most 1000 characters, found"},
        {kHead + kInterfaces + R"(, "description": "a\nb\u001b[31m"})",
            "description: expected one line of at most 1000 characters, found"},
        {kHead + kInterfaces + R"(, "description": ")" + std::string(39, 'x')
                + repeated("\u00e9", 1000) + "\"}",
            "description: expected one line of at most 1000 characters, found "
            "\"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\u00e9...\""},
        {kHead + kInterfaces + ", \"" + std::string(39, 'x') + "\u00e9\u00e9\": 1}",
            "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\u00e9: unknown key"},
        {kHead + R"("interfaces": []})",
            "interfaces: expected an array of 1 to 32, found an array of 0"},
        {kHead + R"("interfaces": [1]})", "interfaces[0]: expected an object, found 1"},
        {kHead + R"("interfaces": [{}]})",
            R"(interfaces[0].reportDescriptor: expected hexadecimal text or {"file": NAME}, found no)"},
        {kHead + R"("interfaces": [{"reportDescriptor": "05 0"}]})",
            R"(interfaces[0].reportDescriptor: expected hexadecimal text or {"file": NAME}, found "05 0")"},
        {kHead + R"("interfaces": [{"reportDescriptor": ""}]})",
            "interfaces[0].reportDescriptor: exp"},
        {kHead + R"("interfaces": [{"reportDescriptor": {"file": "../x.hex"}}]})",
            "interfaces[0].reportDescriptor.file: expected the name of a file in the same folder"},
        {kHead + R"("interfaces": [{"reportDescriptor": {"file": "none.hex"}}]})",
            "interfaces[0].reportDescriptor.file: ", false},
        {kHead + R"("interfaces": [{)" + descriptor + R"(, "number": 32}]})",
            "interfaces[0].number: expected a whole number from 0 to 31, found 32"},
        {kHead + R"("interfaces": [{)" + descriptor + "}, {" + descriptor + R"(, "number": 0}]})",
            "interfaces[1].number: expected a number of its own, found 0 again", false},
        {kHead + R"("interfaces": [{"class": "audio", )" + descriptor + "}]}",
            "interfaces[0].reportDescriptor: unknown key; expected one of number, class, subclass"},
        {kHead + R"("interfaces": [{"boot": 1, )" + descriptor + "}]}",
            "interfaces[0].boot: expected true or false, found 1"},
        {kHead + R"("interfaces": [{"endpoints": {"in": 16}, )" + descriptor + "}]}",
            "interfaces[0].endpoints.in: expected a whole number from 1 to 15, found 16"},
        {kHead + R"("interfaces": [{"endpoints": {"packetSize": 65}, )" + descriptor + "}]}",
            "interfaces[0].endpoints.packetSize: expected a whole number from 1 to 64", false},
        {kHead + R"("interfaces": [{)" + descriptor + R"(}, {"endpoints": {"in": 1}, )" + descriptor
                + "}]}",
            "interfaces[1].endpoints.in: expected an endpoint of its own, found 1 again", false},
        {kHead + R"("interfaces": [{"classDescriptors": [{"length": 65536}], )" + descriptor
                + "}]}",
            "interfaces[0].classDescriptors[0].length: expected a whole number from 0 to 65535"},
        {kHead + kInterfaces + R"(, "behaviour": {"delayMs": 1.5, "lengthError": -1025}})",
            R"(behaviour.lengthError: expected a whole number from -1024 to 1024, found -1025
p.json: behaviour.delayMs: expected a whole number from 0 to 60000, found 1.5)"},
        {kHead + kInterfaces + R"(, "behaviour": {"acknowledges": ["hook"]}})",
            "behaviour.acknowledges[0]: expected one of mute off-hook ring"},
        {kHead + kInterfaces + R"(, "behaviour": {"reactions": [{"state": "on"}]}})",
            "behaviour.reactions[0].lamp: expected one of"},
        {kHead + kInterfaces + R"(, "behaviour": {"onOpen": ["0g"]}})",
            "behaviour.onOpen[0]: expected a report as hexadecimal text of at most 4096 bytes"},
        {kHead + kInterfaces + R"(, "behaviour": {"onOpen": [")" + repeated("00 ", 4097) + "\"]}}",
            "behaviour.onOpen[0]: expected a report as hexadecimal text of at most 4096 bytes",
            false},
    };
    for (const auto& test : cases) {
        const auto result = parse(test.text);
        const auto* const mistake = std::get_if<std::string>(&result);
        ASSERT_TRUE(mistake) << test.text;
        EXPECT_TRUE(mistake->starts_with(std::string("p.json: ") + test.mistake)) << *mistake;
        EXPECT_EQ(schema().accepts(json(test.text)), !test.inSchema) << test.text;
    }
}

TEST(ProfileText, WhatIsNoJsonIsNamedWithItsPlace)
{
    for (const auto& [text, mistake] : {
             std::pair<std::string, const char*>{"{\"vendorId\": \"1209\",\n \"vendorId\": 1}",
                 "p.json:2:2: expected each key once, found vendorId twice"},
             {R"({"interfaces": [{}, {"number": 1, "number": 2}]})",
                 "p.json:1:35: interfaces[1]: expected each key once, found number twice"},
             {R"({"a": [)" + std::string(100'000, '['), "p.json:1:22: a[0][0]"},
             {"{\"product\": \"\xff\"}", "p.json:1:14: product: expected UTF-8"},
             {R"({"product": "\ud800"})", "p.json:1:13: product: expected JSON, found an error: "},
             {"{\"x\": 1 // one\n}", "p.json:1:9: x: expected JSON, which has no comments"},
             {"{\"x\": 1,}", "p.json:1:9: expected JSON, found an error: "},
             {"{} {}", "p.json:1:4: expected JSON, found an error: "},
             {"", "p.json:1:1: expected JSON, found an error: "},
             {std::string(sim::kMaxProfileSize + 1, ' '),
                 "p.json: expected at most 1048576 bytes, found 1048577"},
         }) {
        const auto result = parse(text);
        ASSERT_TRUE(std::holds_alternative<std::string>(result)) << text;
        EXPECT_TRUE(std::get<std::string>(result).starts_with(mistake))
            << std::get<std::string>(result);
    }
}

} // namespace
