#include "report/format/recording.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_view_literals;

// The recording as it would be written, or the error.
std::string rewritten(std::string_view text)
{
    const auto result = report::parseRecording(text, "f");
    if (const auto* const error = std::get_if<report::DescriptorError>(&result))
        return error->text;
    const auto& [devices, reports] = std::get<report::Recording>(result);
    std::string lines;
    for (size_t i = 0; i < devices.size(); ++i)
        lines += report::recordingDevice(i) + report::recordingHeader(devices[i]);
    for (const report::RecordedReport& report : reports)
        lines += report::recordingDevice(report.device) + report::recordingLine(report);
    return lines;
}

TEST(Recording, ReadsOtherProgramsAndWritesWhatTheyRead)
{
    EXPECT_EQ(rewritten("# Headset\r\n"
                        "# 0x05, 0x0b,  // Usage Page (Telephony)\r\n"
                        "R: 3 05 0B fe\r\n"
                        "N:  Head\tset \r\n"
                        "I: 3 046d A\r\n"
                        "\r\n"
                        "# ReportID: 3 / Hook Switch: 1\r\n"
                        "E: 000000.000000 3 03 01 00\r\n"
                        "  E:12.345678 1\t03  \r\n"
                        "E: 4294967295.999999 0"),
        "D: 0\n"
        "R: 3 05 0b fe\n"
        "N: Head set\n"
        "P: \n"
        "I: 3 046d 000a\n"
        "D: 0\nE: 000000.000000 3 03 01 00\n"
        "D: 0\nE: 000012.345678 1 03\n"
        "D: 0\nE: 4294967295.999999 0\n");
}

TEST(Recording, KeepsWhatTheHostSends)
{
    EXPECT_EQ(rewritten("N: a\n"
                        "# output 000000.000010 3 03 08 00 -> 3\n"
                        "# feature 000000.000020 2 00 01 -> failed  no \adevice \n"
                        "# output 000000.000020 0 ->failed\n"
                        "# output 3 lamps\n# feature request 1.0\n# output\n#output 1.0\n"),
        "D: 0\nN: a\nP: \nI: 3 0000 0000\n"
        "D: 0\n# output 000000.000010 3 03 08 00 -> 3\n"
        "D: 0\n# feature 000000.000020 2 00 01 -> failed no  device\n"
        "D: 0\n# output 000000.000020 0 -> failed\n");
}

TEST(Recording, ComparesTheTimesOfEachDevice)
{
    EXPECT_EQ(rewritten("D: 7\nN: a\nE: 000002.000000 1 01\nD: 0\nN: b\nE: 000001.000000 1 01\n"
                        "D:7\nE: 000002.000000 1 02\n"),
        "D: 0\nN: a\nP: \nI: 3 0000 0000\n"
        "D: 1\nN: b\nP: \nI: 3 0000 0000\n"
        "D: 0\nE: 000002.000000 1 01\n"
        "D: 1\nE: 000001.000000 1 01\n"
        "D: 0\nE: 000002.000000 1 02\n");
    EXPECT_EQ(rewritten("N: a\nE: 000002.000000 1 01\n# output 000001.999999 1 01 -> 1"),
        "f:3:10: expected 000002.000000 or later, found an earlier time");
}

TEST(Recording, SaysWhatIsWrong)
{
    const std::string device = "N: a\n";
    for (const auto& [bad, error] :
        {
            std::pair{"G: x"sv,
                "1: expected a line that begins with D:, R:, N:, P:, I:, E: or #, found 'G'"},
            {"05 0b"sv,
                "1: expected a line that begins with D:, R:, N:, P:, I:, E: or #, found '0'"},
            {"N: b"sv,
                "1: expected one N: line for each device, found another; a D: line begins another "
                "device"},
            {"D: x"sv, "4: expected the index of a device, at most 65535, found 'x'"},
            {"D: 65536"sv,
                "4: expected the index of a device, at most 65535, found a greater number"},
            {"D: 1\nE: 0.000000 0"sv, ""},
            {"I: 3 46d"sv,
                "9: expected a hexadecimal product id of at most ffff, found the end of the text"},
            {"I: 3 10000 1"sv,
                "6: expected a hexadecimal vendor id of at most ffff, found a greater number"},
            {"I: 3 1 2 3"sv, "10: expected the end of the line, found '3'"},
            {"R: 0"sv, "4: expected a length from 1 to 65535 before the bytes, found '0'"},
            {"R: 2 05"sv,
                "8: expected byte 2 of 2 (the length comes first), found the end of the text"},
            {"R: 2 05 0b 09"sv,
                "12: expected the end of the line after 2 bytes (the length comes first), found "
                "'0'"},
            {"R: a1 01"sv, "4: expected a length from 1 to 65535 before the bytes, found 'a'"},
            {"R: 0b 05"sv, "5: expected a blank after the length, which is decimal, found 'b'"},
            {"R: 1c0"sv, "5: expected a blank after the length, which is decimal, found 'c'"},
            {"R: 2 050b"sv, "8: expected a blank after the byte's two digits, found '0'"},
            {"R: 2 05 xb"sv, "9: expected byte 2 of 2 (the length comes first), found 'x'"},
            {"E: 1 1 01"sv, "5: expected a decimal point after the seconds, found a blank"},
            {"E: -1.000000 1 01"sv, "4: expected a time of at most 4294967295 seconds, found '-'"},
            {"E: 4294967296.000000 0"sv,
                "4: expected a time of at most 4294967295 seconds, found a greater number"},
            {"E: 1.5 1 01"sv, "6: expected six decimals, found 1"},
            {"E: 1.0000000 1 01"sv, "6: expected six decimals, found 7"},
            {"E: 1.000000 65536 01"sv,
                "13: expected a length from 0 to 65535 before the bytes, found a greater number"},
            {"E: 1.000000"sv,
                "12: expected a length from 0 to 65535 before the bytes, found the end of the "
                "text"},
            {"# output 1.5 0 -> 0"sv, "12: expected six decimals, found 1"},
            {"# output 1.000000 1 01"sv,
                "23: expected -> after the report's 1 bytes, found the end of the text"},
            {"# output 1.000000 1 01 -> 0"sv, "27: expected 1 or failed, found '0'"},
            {"# output 1.000000 1 01 -> failedx"sv, "33: expected a blank after failed, found 'x'"},
        }) {
        const std::string place = *error ? "f:2:"
                                         : "f:3:1: expected a line with R:, N:, P: or I: "
                                           "about device 1 before its reports, found none";
        EXPECT_EQ(rewritten(device + std::string(bad)), place + error) << bad;
    }
    EXPECT_EQ(rewritten("\xff\xfeR\0"sv), "f: a text in UTF-16; save it as UTF-8");
    EXPECT_EQ(rewritten("# only\n\n"), "f:3:1: expected a recording, found no device");
}

TEST(Recording, TakesTheLongestReport)
{
    report::RecordedReport report;
    report.bytes.assign(report::kMaxReportSize, 0xAB);
    const std::string line = report::recordingLine(report);
    EXPECT_TRUE(rewritten("N: a\n" + line).ends_with("D: 0\n" + line));
}

} // namespace
