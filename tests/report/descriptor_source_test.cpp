#include "report/format/descriptor_source.h"
#include "report/format/recording.h"
#include "tests/support/temp_directory.h"

#include <array>
#include <cstdio>

namespace {

using namespace std::string_view_literals;

// What was found, one line each: "label|name|ids|bytes". Or the error.
std::string textOf(const report::DescriptorsResult& result)
{
    if (const auto* const error = std::get_if<report::DescriptorError>(&result))
        return error->text;
    std::string text;
    for (const auto& [bytes, label, ids, name] : std::get<0>(result)) {
        std::array<char, 16> idText{};
        if (ids)
            std::snprintf(idText.data(), idText.size(), "%04x:%04x", unsigned{ids->vendor},
                unsigned{ids->product});
        for (const std::string& part : {label, name, std::string(idText.data())})
            text.append(part).append("|");
        text.append(report::toHex(bytes)).append("\n");
    }
    return text;
}

std::string parsed(std::string_view content)
{
    return textOf(report::parseDescriptors(content, "f"));
}

TEST(DescriptorSource, RecognisesEachFormat)
{
    struct Case {
        std::string_view content;
        const char* found;
    };
    for (const auto& [content, found] : {
             Case{"\x05\x0b\x09\x05\xa1\x01\xc0"sv, "|||05 0b 09 05 a1 01 c0\n"},
             {"\x09\x05\x0b\x05\x00\x0b\x00"sv, "|||09 05 0b 05 00 0b 00\n"},    // blanks first
             {"\x05\x0b\xfe\x01\x00\x07\0\0"sv, "|||05 0b fe 01 00 07 00 00\n"}, // long, padded
             {"# Recorded: 05\n\n05 0B, 0x09\r\n"sv, "|||05 0b 09\n"},
             {"/* R: 1 */ 0x05"sv, "|||05\n"},
             {"{0x05,0x0b,}"sv, "|||05 0b\n"},
             {"\xef\xbb\xbf 05"sv, "|||05\n"}, // byte order mark
             {"\xef\xbb\xbfR: 1 05\n"sv, "device 0|||05\n"},
             {"\xef\xbb\xbfu8 a[] = {0x05};"sv, "a|||05\n"},
             {"#include <stdint.h>\n"
              "typedef unsigned char u8; // {\n"
              "[[maybe_unused]] static const u8 desc_1 [ 0x3 ] PROGMEM =\n"
              "{\n  0x05, 0x0b, // Usage Page\n  0x09 /* Usage */\n};\n"
              "extern const u8 other[SIZE];\n"
              "const u8 other[SIZE] = { 0XC0 };\n"
              "constexpr std::array<u8, 1> last{0xA1};\n"sv,
                 "desc_1|||05 0b 09\nother|||c0\nlast|||a1\n"},
             {"001:005:003:DESCRIPTOR         1795310982.961021\n 05 0B 09\n 05\n\n"
              "001:005:003:STREAM             1795310983.000001\n 03 01 00\n\n"
              "001:005:000:STREAM             1795310983.000001\n\r\n"
              "002:127:000:DESCRIPTOR         1795310983.123456\r\n C0\r\n"sv,
                 "bus 001, device 005, interface 003|||05 0b 09 05\n"
                 "bus 002, device 127, interface 000|||c0\n"},
             {"# A headset\nD: 3\nR: 2 05 0b\nN: Talk {1} \nP: usb-1/input0\nI: 3 046d 0A\n"
              "D: 4\nN: no descriptor\nD:5\nR: 1 c0\n"sv,
                 "Talk {1}, usb-1/input0|Talk {1}|046d:000a|05 0b\ndevice 2|||c0\n"},
         })
        EXPECT_EQ(parsed(content), found) << content;
}

TEST(DescriptorSource, SaysWhatIsWrong)
{
    for (const auto& [content, error] :
        {
            std::pair{""sv, "f:1:1: expected a descriptor, found no bytes"},
            {" \n# only\n"sv, "f:3:1: expected a descriptor, found no bytes"},
            {"05 0b 09 05 a1 01\0"sv, "f:1:18: expected two hexadecimal digits, found byte 0x00"},
            {"\x05\x0b\x09"sv, "f: a binary file that ends within the item at byte 2"},
            {"\x05\x0b\x7f"
             "ELF"sv,
                "f: a binary file that is no report descriptor: "
                "item 0x7f at byte 2 is reserved"},
            {"\0\0"sv,
                "f: a binary file that is no report descriptor: "
                "item 0x00 at byte 0 is reserved"},
            {"\xff\x01"sv,
                "f: a binary file that is no report descriptor: "
                "item 0xff at byte 0 is reserved"},
            // C
            {"05 {0x05}"sv, "f:1:1: expected a declaration or '{', found '0'"},
            {"u8 d[] = {0x05"sv, "f:1:15: expected ',' or '}', found the end of the text"},
            {"u8 d[] = {0x05, 12}"sv, "f:1:17: expected 0x and two hexadecimal digits, found '1'"},
            {"u8 d[] = {0x05 0x0b}"sv, "f:1:16: expected ',' or '}', found '0'"},
            {"u8 d[] = {0x050b}"sv,
                "f:1:15: expected the end of the byte after its two digits, found '0'"},
            {"u8 d[] = {}"sv, "f:1:11: expected 0x and two hexadecimal digits, found '}'"},
            {"u8 d[] = {\n#if A\n0x05}"sv,
                "f:2:1: expected 0x and two hexadecimal digits, found '#'"},
            {"u8 d[3] = {0x05, 0x0b};"sv, "f:1:22: expected 3 bytes as declared, found 2"},
            {"u8 d[] = {0x05}; int"sv, "f:1:21: expected '{' or ';', found the end of the text"},
            {"u8 d[] = {0x05}}"sv, "f:1:16: expected a declaration or '{', found '}'"},
            // usbhid-dump
            {"001:002:000:DESCRIPTOR 1.000000\n 05 0"sv,
                "f:2:6: expected a second hexadecimal digit, found the end of the text"},
            {"001:002:000:DESCRIPTOR 1.000000\n\n"sv,
                "f:2:1: expected the bytes of the descriptor, found the end of the line"},
            {"001:002:000:STREAM 1.000000\n 05\n"sv,
                "f:3:1: expected a DESCRIPTOR block, found the end of the text"},
            {"001:002:000:Failed to claim"sv, "f:1:13: expected DESCRIPTOR or STREAM, found 'F'"},
            {"001:256:000:DESCRIPTOR 1.0"sv,
                "f:1:5: expected the number of a device, found a greater number"},
            {"001:002:DESCRIPTOR 1.0"sv, "f:1:9: expected the number of an interface, found 'D'"},
            // others
            {"N: a\n"sv, "f:2:1: expected an R: line with a descriptor, found the end of the text"},
            {"R: 2 05\n"sv,
                "f:1:8: expected byte 2 of 2 (the length comes first), found the end of the line"},
            {"\xef\xbb\xbf x"sv, "f:1:2: expected two hexadecimal digits, found 'x'"},
            {"\xff\xfeR\0"sv, "f: a text in UTF-16; save it as UTF-8"},
            {"\xfe\xff\0R"sv, "f: a text in UTF-16; save it as UTF-8"},
            {"\nBus 001 Device 003: ID 1209:0001\n"sv,
                "f:2:1: expected a descriptor in bytes, found the output of lsusb; "
                "use that of \"sudo usbhid-dump -e descriptor\""},
        })
        EXPECT_EQ(parsed(content), error) << content;
}

TEST(DescriptorSource, RefusesTheOffsetsOfDumps)
{
    for (const char* const dump : {
             "00000000: 050b 0905 a101  ......\n",      // xxd
             "00000000  05 0b 09 05 a1 01  |......|\n", // hexdump -C
             "0000000 0b05 0509 01a1\n0000006\n",       // hexdump
             "000000 05 0b 09 05 a1 01\n000006\n",      // od -Ax -tx1
         })
        EXPECT_EQ(parsed(dump),
            "f:1:1: expected a descriptor in bytes, found the offsets of a dump; "
            "use the output of \"xxd -p\"");
    EXPECT_EQ(parsed("05 0b 0000"), "|||05 0b 00 00\n");
}

std::string repeated(std::string_view text, size_t count)
{
    std::string all;
    while (count-- > 0)
        all += text;
    return all;
}

TEST(DescriptorSource, TakesTheLongestDescriptorInEachFormat)
{
    for (const size_t size : {65'535u, 65'536u})
        for (const std::string& content : {
                 repeated("\x04", size),
                 "{" + repeated("0x04,", size) + "}",
                 "1:2:3:DESCRIPTOR 1.0\n" + repeated("04 ", size),
                 "R: " + std::to_string(size) + repeated(" 04", size),
             }) {
            const auto result = report::parseDescriptors(content, "f");
            const auto* const found = std::get_if<0>(&result);
            EXPECT_EQ(found ? found->front().bytes.size() : 0, size == 65'535 ? size : 0)
                << content.substr(0, 20);
        }
}

TEST(DescriptorSource, SaysWhetherAFileCouldBeRead)
{
    const test::TempDirectory directory;
    const auto error = [&](const std::string& file) {
        const auto result = report::readDescriptors(file);
        const auto& found = std::get<report::DescriptorError>(result);
        return found.text + (found.unreadable ? " (unreadable)" : "");
    };
    const std::string path = directory.path() + "d";
    EXPECT_EQ(error(path), path + ": No such file or directory (unreadable)");
    EXPECT_EQ(error("/"), "/: Is a directory (unreadable)");
    directory.file("d", "05 0b 9");
    EXPECT_EQ(
        error(path), path + ":1:8: expected a second hexadecimal digit, found the end of the text");
    std::filesystem::resize_file(path, report::kMaxRecordingSize + 1);
    EXPECT_EQ(error(path), path + ": more than 64 MiB, the most that is read");
    directory.file("d", "\x05\x0b");
    EXPECT_EQ(textOf(report::readDescriptors(path)), "|||05 0b\n");
}

} // namespace
