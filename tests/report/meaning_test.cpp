#include "report/meaning.h"
#include "tests/support/device_file.h"

#include <gtest/gtest.h>

namespace {

using enum report::ReportKind;

const report::UsageNames& names()
{
    static const auto names = report::UsageNames::parse(
        "HUT 08  LEDs\n\t017  Off-Hook\n\t018  Ring\n"
        "HUT 0b  Telephony\n\t020  Hook Switch\n\t02f  Phone Mute\n\t0b4  Key 4\n"
        "\t0b5  Key 5\n"
        "HUT 0c  Consumer\n\t0e0  Volume\n");
    return names;
}

// The lines of the reports one after another.
std::string lines(const std::string& items, const std::vector<std::string>& reports)
{
    const report::Layout layout = report::readLayout(test::bytesFromHex(items));
    report::ReportWords words(layout, names());
    std::string lines;
    for (const std::string& text : reports) {
        const report::Bytes bytes = report::fromHex(text).value();
        lines += words.line(report::wireReport(layout, kInput, bytes), "*") + "; ";
    }
    return lines;
}

TEST(Meaning, PutsReportsIntoWords)
{
    const std::string mute = "050b 1500 2501 75019502 0920092f 8102 75069501 8101";
    const std::string keys = "050b 1501 2504 75089503 0900 09b4 09b5 0931 8100";
    const std::string data = "0600ff 1500 26ff00 75089504 0901 8102";
    using Reports = std::vector<std::string>;
    for (const auto& [items, reports, expected] :
        {
            std::tuple{mute, Reports{"00", "01", "01", "03", "02", "00", "00"},
                "nothing on; Hook Switch on*; Hook Switch on; Hook Switch on, Phone Mute on*; "
                "Hook Switch off*, Phone Mute on; Phone Mute off*; nothing on; "},
            // Numbers, and whole bytes that are 0 or 1.
            {"050c 1500 2564 75089501 09e0 8102", Reports{"0c", "0c", "00", "00"},
                "Volume 12*; Volume 12; Volume 0*; nothing on; "},
            {"050c 1581 257f 75089501 09e0 8106", Reports{"ff"}, "Volume -1*; "},
            {"050b 1500 2501 75089501 092f 8102", Reports{"01", "00", "02"},
                "Phone Mute on*; Phone Mute off*; Phone Mute 2*, Phone Mute out of range*; "},
            // The place in an array has no meaning.
            {keys, Reports{"030200", "000302", "030000", "000000", "000000"},
                "Key 4 pressed*, Key 5 pressed*; Key 4 pressed, "
                "Key 5 pressed; Key 5 pressed, Key 4 released*; "
                "Key 5 released*; nothing on; "},
            {keys, Reports{"010909", "040000"}, "nothing on; Telephony 0x0031 pressed*; "},
            {"050b 2509 75089502 09b4 8100", Reports{"0105", "0000"},
                "Value 1 pressed*, Value 5 pressed*; Key 4 pressed*, Value 1 released*, "
                "Value 5 released*; "},
            // Data of several bytes is one word.
            {data, Reports{"01020000", "01020000", "00000000", "00000000", "00000001"},
                "Page 0xff00 0x0001: 01 02 then 2 zeros*; Page 0xff00 0x0001: 01 02 then 2 zeros; "
                "Page 0xff00 0x0001: 4 zeros*; nothing on; Page 0xff00 0x0001: 00 00 00 01*; "},
            {"1500 26ff0f 750c9502 8102", Reports{"bc3a12"}, "Data: abc 123*; "},
            {"0600ff 1581257f 75089502 1901 2902 8102", Reports{"fffe"},
                "Page 0xff00 0x0001: ff fe*; "},
            {"0600ff 1500 26ff00 75089502 190029ff 8100", Reports{"0500"},
                "Page 0xff00 0x0000: 05 then 1 zero*; "},
            {"0600ff 1500 2501 75019508 0920 0921 8102", Reports{"01"}, "Page 0xff00 0x0020 on*; "},
            {"1500 2501 75019501 8102", Reports{"01"}, "Unnamed value on*; "},
        })
        EXPECT_EQ(lines(items, reports), expected) << items;
}

TEST(Meaning, SaysWhatIsWrongWithAReport)
{
    const std::string ids = "050c 1501 2564 75089502 8503 09e009e1 8102 ";
    const std::string noIds = "050c 1501 2564 75089501 09e0 ";
    using Reports = std::vector<std::string>;
    for (const auto& [items, reports, expected] : {
             std::tuple{ids, Reports{"0505", "0506", ""},
                 "unknown input report 5*; unknown input report 5; unknown input report 0*; "},
             {std::string(), Reports{"05"}, "unknown input report*; "},
             {ids, Reports{"0301", "030102", "03010203"},
                 "Volume 1*, 2 bytes long instead of 3*; Volume 1, Consumer 0x00e1 2*; "
                 "Volume 1, Consumer 0x00e1 2, 4 bytes long instead of 3*; "},
             {noIds + "8102", Reports{""}, "0 bytes long instead of 1*; "},
             {ids, Reports{"036501", "030065", "030065"},
                 "Volume 101*, Consumer 0x00e1 1*, Volume out of range*; "
                 "Volume 0*, Consumer 0x00e1 101*, Volume and 1 more out of range*; "
                 "Consumer 0x00e1 101, Volume and 1 more out of range; "},
             // Null values and those of arrays are out of range on purpose.
             {noIds + "8142", Reports{"ff"}, "Volume 255*; "},
             {noIds + "8100", Reports{"ff"}, "nothing on; "},
             {std::string("0600ff 2501 75089502 0901 8102"), Reports{"0009"},
                 "Page 0xff00 0x0001: 00 09*; "},
         })
        EXPECT_EQ(lines(items, reports), expected) << items;
}

TEST(Meaning, KeepsReportsOfEachKindAndIdApart)
{
    const std::string items = "0508 2501 75019501 8503 0917 9102 0918 8102 8504 0918 9102";
    const report::Layout layout = report::readLayout(test::bytesFromHex(items));
    report::ReportWords words(layout, names());
    const auto line = [&](report::ReportKind kind, const report::Bytes& bytes) {
        return words.line(report::sentReport(kind, bytes), "*");
    };
    EXPECT_EQ(line(kOutput, {3, 1}), "Off-Hook on*");
    EXPECT_EQ(line(kOutput, {4, 1}), "Ring on*");
    EXPECT_EQ(line(kInput, {3, 0}), "nothing on");
    EXPECT_EQ(line(kOutput, {3, 1}), "Off-Hook on");
    EXPECT_EQ(line(kFeature, {3, 1}), "unknown feature report 3*");
}

} // namespace
