#include "hid/model/BuiltInDescriptor.h"
#include "sim/profile/profile_text.h"
#include "sim/profile/profiles.h"
#include "tests/support/device_file.h"
#include "tests/support/temp_directory.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using sim::Bytes;

TEST(Profiles, DifferInTheirIdsAndBuiltInHasTheDescriptorThatKelprobeHas)
{
    std::set<std::pair<uint16_t, uint16_t>> ids;
    for (const sim::Profile& profile : sim::profiles())
        EXPECT_TRUE(ids.emplace(profile.info.vendorId, profile.info.productId).second)
            << profile.name;
    const sim::UsbDeviceInfo& info = sim::findProfile("built-in")->info;
    EXPECT_EQ(std::pair(info.vendorId, info.productId),
        std::pair(KX::kBuiltInVendorId, KX::kBuiltInProductId));
    EXPECT_EQ(info.controls().reportDescriptor,
        sim::Bytes(KX::kBuiltInDescriptor.begin(), KX::kBuiltInDescriptor.end()));
}

TEST(Profiles, EveryDescriptorFileHasAnOriginAndALicence)
{
    for (const char* const directory : {KELPROBE_TEST_DEVICES "/", KELPROBE_TEST_PROFILES "/"}) {
        const std::string origins = test::content(std::string(directory) + "ORIGINS.md");
        for (const auto& [file, text] : test::filesIn(directory))
            EXPECT_TRUE(
                !file.ends_with(".hex") || origins.find("| `" + file + "` |") != origins.npos)
                << directory << file;
    }
}

// The devices of a file: ids, product, and each interface's number and endpoints.
std::string devicesIn(const std::string& file, const sim::ProfileOptions& options = {})
{
    std::string text;
    for (const sim::Profile& profile : sim::loadProfiles(file, options)) {
        const sim::UsbDeviceInfo& info = profile.info;
        text += sim::toHex(Bytes{sim::highByte(info.vendorId), sim::lowByte(info.vendorId),
                               sim::highByte(info.productId), sim::lowByte(info.productId)},
                    "")
            + " " + std::string(info.product.begin(), info.product.end());
        for (const sim::InterfaceInfo& interface : info.interfaces)
            text += " " + std::to_string(interface.number) + ":"
                + std::to_string(interface.inEndpoint) + "/"
                + std::to_string(interface.outEndpoint);
        text += "; ";
    }
    return text;
}

TEST(Profiles, AreMadeOfAnyFileWithADescriptor)
{
    const test::TempDirectory directory;
    const std::string telephony = "05 0b 09 05 a1 01 75 08 95 01 09 20 81 02 c0";
    const std::string line = "R: 15 " + telephony + "\n";
    const struct {
        const char *name, *content, *devices;
    } cases[] = {
        {"a-b.hex", telephony.c_str(), "12090001 a-b 0:1/1; "},
        {"sysfs.bin", "\x05\x0b\x09\x05\xa1\x01\xc0", "12090001 sysfs 0:1/1; "},
        {"one.c", "static const unsigned char phone[] = {0x05, 0x0b};", "12090001 one 0:1/1; "},
        {"dump.txt",
            "001:005:003:DESCRIPTOR 1.2\n 05 0b\n\n001:005:000:DESCRIPTOR 1.3\n 05 0c\n\n"
            "001:006:000:DESCRIPTOR 1.3\n 05 0c\n",
            "12090001 dump 3:1/1 0:2/2; 12090001 dump 0:1/1; "},
        {"two.c", "{ 0x05, 0x0b }", "12090001 two 0:1/1; "},
        {"webcam", telephony.c_str(), "12090001 webcam 0:1/1; "},
        {"bom.txt",
            "\xef\xbb\xbf{\"vendorId\": \"0001\", \"productId\": \"0002\", "
            "\"interfaces\": [{\"reportDescriptor\": \"05 0b\"}]}",
            "00010002  0:1/1; "},
        {"recording.hid", nullptr,
            "0b0e0410 Phone, new 3:1/1 0:2/2; 0b0e0411 Other 31:1/1; 12090001 Third 0:1/1; "},
    };
    const std::string recording = "D: 0\n" + line
        + "N: Phone, new\nP: usb-1/input3\nI: 3 0b0e 0410\n" + "D: 1\n" + line
        + "N: Phone, new\nP: usb-1/input0\nI: 3 0b0e 0410\n" + "D: 2\n" + line
        + "N: Other\nP: 1-2:1.31\nI: 3 0b0e 0411\nD: 3\n" + line
        + "N: Third\nP: 1-2:1.32\nE: 000000.000000 1 00\n";
    for (const auto& [name, content, devices] : cases) {
        const std::string file = directory.file(
            name, content ? std::string_view(content) : std::string_view(recording));
        EXPECT_EQ(devicesIn(file), devices);
    }
    const std::string profile
        = directory.file("p.json", sim::writeProfile(*sim::findProfile("webcam")));
    EXPECT_EQ(devicesIn(profile), "12090003 Simulated webcam 0:1/1; ");
    EXPECT_EQ(devicesIn("webcam"), "12090003 Simulated webcam 0:1/1; ");
    EXPECT_EQ(devicesIn(directory.path() + "recording.hid",
                  {.ids = report::DeviceIds{1, 2},
                      .product = "X",
                      .interfaceNumber = 0,
                      .noOutEndpoint = true}),
        "00010002 X 0:1/0 3:2/2; 00010002 X 0:1/0; 00010002 X 0:1/0; ");
}

// Neither a file nor a built-in profile needs the other built-in profiles.
TEST(Profiles, AreReadOnlyWhenTheyAreNamed)
{
    const test::TempDirectory directory;
    const std::string webcam = directory.file("webcam.json",
        R"({"vendorId": "1209", "productId": "0009", "interfaces": [{"class": "audio"}]})");
    (void)directory.file("broken.json", "{");
    for (const auto& [folder, name, devices] : {
             std::tuple{std::string("/proc"), webcam, "12090009  0:1/1; "},
             {directory.path(), webcam, "12090009  0:1/1; "},
             {directory.path(), std::string("webcam"), "12090009  0:1/1; "},
         }) {
        setenv("KELPROBE_PROFILES", folder.c_str(), 1);
        EXPECT_EQ(devicesIn(name), devices);
    }
    EXPECT_THROW((void)sim::loadProfiles("broken"), sim::ProfileError);
    unsetenv("KELPROBE_PROFILES");
}

TEST(Profiles, SayWhyAFileHasNone)
{
    const test::TempDirectory directory;
    for (const auto& [name, mistake] : {
             std::pair<std::string, std::string>{
                 "webcm", "unknown profile webcm; did you mean webcam?"},
             {"toaster", "unknown profile toaster"},
             {directory.path() + "none", directory.path() + "none: No such file or directory"},
             {directory.file("x.hex", "05 0g"), directory.path() + "x.hex:1:5: expected "},
             {directory.file("x.json", "{}"), directory.path() + "x.json: vendorId: expected "},
             {directory.file("y.json", "05 0b"), directory.path() + "y.json:1:4: expected JSON, "},
             {directory.file("array", "[]"), directory.path() + "array: expected an object, "},
             {directory.file("cut", " [\"a\""), directory.path() + "cut:1:6: [0]: expected JSON, "},
             {directory.file("deep", "{{{"), directory.path() + "deep:1:2: expected JSON, "},
             {directory.path() + "\x1b[1m.hex", directory.path() + "\\x1b[1m.hex: No such file"},
             {directory.file("\nx.json", "[]"), directory.path() + "\\x0ax.json: expected an"},
             {"\x1b", "unknown profile \\x1b"},
             {"", "expected a profile or a file, found an empty name"},
         }) {
        try {
            (void)sim::loadProfiles(name);
            ADD_FAILURE() << name;
        } catch (const sim::ProfileError& error) {
            EXPECT_TRUE(std::string(error.what()).starts_with(mistake)) << error.what();
        }
    }
    EXPECT_THROW((void)sim::loadProfiles("webcam", {.interfaceNumber = 32}), sim::ProfileError);
    EXPECT_THROW(
        (void)sim::loadProfiles("webcam", {.product = std::string(127, 'x')}), sim::ProfileError);
}

} // namespace
