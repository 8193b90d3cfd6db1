#include "report/format/descriptor_file.h"
#include "tests/support/device_file.h"
#include "tests/support/temp_directory.h"

namespace {

using namespace std::string_view_literals;

std::string errorOf(const report::DescriptorResult& result)
{
    const auto* const error = std::get_if<report::DescriptorError>(&result);
    return error ? error->text : "no error";
}

TEST(DescriptorFile, ReadsEveryFormOfHexadecimalText)
{
    for (const char* const good : {
             "050bfe",
             "05 0B\tFe",
             "\r\n05 0b\r\nfe\r\n",
             "0x05, 0x0b, 0xFE,",
             "0X05 0x0b,fe",
             "# device: 01 02\n050b // 03\n/* 04\n ** /05 */fe#06",
             "/**/05/*/*/0b//\nfe /* */",
         })
        EXPECT_EQ(test::bytesFromHex(good), (report::DescriptorBytes{0x05, 0x0b, 0xfe})) << good;
}

TEST(DescriptorFile, SaysWhereAndWhyItCannotReadAText)
{
    for (const auto& [bad, error] : {
             std::pair{""sv, "f:1:1: expected a descriptor, found no bytes"},
             {"# only\n \n"sv, "f:3:1: expected a descriptor, found no bytes"},
             {"05 0b\n 9 01"sv, "f:2:3: expected a second hexadecimal digit, found a blank"},
             {"05 0\n1"sv, "f:1:5: expected a second hexadecimal digit, found the end of the line"},
             {"050"sv, "f:1:4: expected a second hexadecimal digit, found the end of the text"},
             {"0x5, 0x0b"sv, "f:1:4: expected a second hexadecimal digit, found ','"},
             {"0x050b"sv, "f:1:5: expected the end of the byte after its two digits, found '0'"},
             {"0x"sv, "f:1:3: expected two hexadecimal digits, found the end of the text"},
             {"05, , 0b"sv, "f:1:5: expected two hexadecimal digits, found ','"},
             {",05"sv, "f:1:1: expected two hexadecimal digits, found ','"},
             {"05 / 0b"sv, "f:1:4: expected two hexadecimal digits, found '/'"},
             {"05\n /* 0b"sv, "f:2:2: expected */ after this /*, found the end of the text"},
             {"05 /*/ 0b"sv, "f:1:4: expected */ after this /*, found the end of the text"},
             {"05\0"sv, "f:1:3: expected two hexadecimal digits, found byte 0x00"},
             {"\xef\xbb"sv, "f:1:1: expected two hexadecimal digits, found byte 0xef"},
         })
        EXPECT_EQ(errorOf(report::parseDescriptor(bad, "f")), error) << bad;
}

TEST(DescriptorFile, IsAsLongAsADeviceCanSend)
{
    std::string digits;
    for (size_t i = 0; i < 65'535; ++i)
        digits += "0b\n";
    EXPECT_EQ(test::bytesFromHex(digits), report::DescriptorBytes(65'535, 0x0b));
    EXPECT_EQ(errorOf(report::parseDescriptor(digits + "0b", "f")),
        "f:65536:1: expected at most 65535 bytes, found more");
}

TEST(DescriptorFile, NamesTheFileInErrors)
{
    const test::TempDirectory directory;
    const std::string path = directory.path() + "device.hex";
    const auto error = [&] { return errorOf(report::readDescriptorFile(path)); };
    EXPECT_EQ(error(), path + ": No such file or directory");
    directory.file("device.hex", "05 0b g");
    EXPECT_EQ(error(), path + ":1:7: expected two hexadecimal digits, found 'g'");
    directory.file("device.hex", std::string(report::kMaxFileSize + 1, ' '));
    EXPECT_EQ(error(), path + ": more than 4 MiB, the most that is read");
    EXPECT_EQ(errorOf(report::readDescriptorFile("/")), "/: Is a directory");
}

} // namespace
