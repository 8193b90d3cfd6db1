#include "report/descriptor_file.h"
#include "tests/support/temp_directory.h"

namespace {

using report::DescriptorBytes;

// The bytes, "050b09", or the error.
std::string text(const report::DescriptorResult& result)
{
    if (const auto* error = std::get_if<report::DescriptorError>(&result))
        return error->text;
    std::string digits;
    for (const uint8_t byte : std::get<DescriptorBytes>(result)) {
        char pair[3];
        snprintf(pair, sizeof pair, "%02x", byte);
        digits += pair;
    }
    return digits;
}

TEST(DescriptorFile, ReadsEveryFormOfHexadecimalText)
{
    for (const char* const good : {
             "050bfe",
             "05 0B\tFe",
             "\r\n05 0b\r\nfe\r\n",
             "0x05, 0x0b, 0xFE,",
             "0X05 0x0b,fe",
             "05,0b fe\n",
             "# device: 01 02\n050b // 03\n/* 04\n ** /05 */fe#06",
             "/**/05/*/*/0b//\nfe /* */",
         })
        EXPECT_EQ(text(report::parseDescriptor(good, "f")), "050bfe") << good;
}

TEST(DescriptorFile, SaysWhereAndWhyItCannotReadAText)
{
    for (const auto& [bad, error] : {
             std::pair{"", "f:1:1: expected a descriptor, found no bytes"},
             {"# only\n \n", "f:3:1: expected a descriptor, found no bytes"},
             {"05 0b\n 9 01", "f:2:3: expected a second hexadecimal digit, found a blank"},
             {"05 0\n1", "f:1:5: expected a second hexadecimal digit, found the end of the line"},
             {"050", "f:1:4: expected a second hexadecimal digit, found the end of the text"},
             {"0x5, 0x0b", "f:1:4: expected a second hexadecimal digit, found ','"},
             {"0x050b", "f:1:5: expected the end of the byte after its two digits, found '0'"},
             {"0x", "f:1:3: expected two hexadecimal digits, found the end of the text"},
             {"05, , 0b", "f:1:5: expected two hexadecimal digits, found ','"},
             {",05", "f:1:1: expected two hexadecimal digits, found ','"},
             {"{0x05}", "f:1:1: expected two hexadecimal digits, found '{'"},
             {"05 / 0b", "f:1:4: expected two hexadecimal digits, found '/'"},
             {"05\n /* 0b", "f:2:2: expected */ after this /*, found the end of the text"},
             {"05 /*/ 0b", "f:1:4: expected */ after this /*, found the end of the text"},
             {"05 \x01", "f:1:4: expected two hexadecimal digits, found byte 0x01"},
             {"\xef\xbb\xbf"
              "05",
                 "f:1:1: expected two hexadecimal digits, found byte 0xef"},
             // What other tools print.
             {"001:004:003:DESCRIPTOR 1500000000.123456\n 05 0B 09 05\n",
                 "f:1:4: expected a second hexadecimal digit, found ':'"},
             {"00000000: 050b 0905 a101   ......\n",
                 "f:1:9: expected two hexadecimal digits, found ':'"},
             {"R: 3 05 0b 09\n", "f:1:1: expected two hexadecimal digits, found 'R'"},
             {"          Report Descriptors: \n",
                 "f:1:11: expected two hexadecimal digits, found 'R'"},
         })
        EXPECT_EQ(text(report::parseDescriptor(bad, "f")), error) << bad;
    EXPECT_EQ(text(report::parseDescriptor(std::string_view("05\0", 3), "f")),
        "f:1:3: expected two hexadecimal digits, found byte 0x00");
}

TEST(DescriptorFile, IsAsLongAsADeviceCanSend)
{
    std::string digits;
    for (size_t i = 0; i < report::kMaxDescriptorSize; ++i)
        digits += "0b\n";
    const auto longest = report::parseDescriptor(digits, "f");
    ASSERT_TRUE(std::holds_alternative<DescriptorBytes>(longest)) << text(longest);
    EXPECT_EQ(std::get<DescriptorBytes>(longest).size(), 65'535U);
    EXPECT_EQ(text(report::parseDescriptor(digits + "0b", "f")),
        "f:65536:1: expected at most 65535 bytes, found more");
}

TEST(DescriptorFile, NamesTheFileInErrors)
{
    const test::TempDirectory directory;
    const std::string path = directory.file("device.hex", "05 0b\n");
    EXPECT_EQ(text(report::readDescriptorFile(path)), "050b");
    directory.file("device.hex", "05 0b g");
    EXPECT_EQ(text(report::readDescriptorFile(path)),
        path + ":1:7: expected two hexadecimal digits, found 'g'");
    directory.file("device.hex", std::string(report::kMaxFileSize + 1, ' '));
    EXPECT_EQ(text(report::readDescriptorFile(path)), path + ": File too large");
    EXPECT_EQ(text(report::readDescriptorFile(path + "x")), path + "x: No such file or directory");
    EXPECT_EQ(
        text(report::readDescriptorFile(directory.path())), directory.path() + ": Is a directory");
}

} // namespace
