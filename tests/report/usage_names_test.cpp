#include "report/usage_names.h"
#include "tests/support/temp_directory.h"

#include <gtest/gtest.h>

namespace {

using report::UsageNames;

TEST(UsageNames, AreThoseOfTheFile)
{
    const std::string file = "0b0e  A vendor\n"
                             "\t0020  A device\n"
                             "HUT 0b  Telephony\n"
                             "\t020  Hook Switch\n"
                             "# comment\n"
                             "\n"
                             "\t074  Answer On/Offf \n"
                             "\t020  Second name\n"
                             "\t\t021  Too deep\n"
                             "\t022 One blank\n"
                             "\t023\n"
                             "\t10024  Too large\n"
                             "\t0b1  Key 2\n"
                             "\t0ba  Key Star\n"
                             "\t025  "
        + std::string(256, 'x')
        + "\n"
          "HUT 08\n"
          "\t009  Of no page\n"
          "HUT 09  Buttons\n"
          "\t001  Button 1 (Primary)\n"
          "HUT 0b  Again\n"
          "\t021  Flash\n"
          "L 0001  Arabic\n"
          "\t01  Saudi Arabia\n"
          "HUT FF30  Vendor";
    std::string withReturns = file;
    for (size_t at = 0; (at = withReturns.find('\n', at)) != withReturns.npos; at += 2)
        withReturns.insert(at, "\r");
    for (const std::string& text : {file, withReturns}) {
        const UsageNames names = UsageNames::parse(text);
        EXPECT_EQ(names.page(0x0b), "Telephony");
        EXPECT_EQ(names.page(0xff30), "Vendor");
        EXPECT_EQ(names.page(0x08), "Page 0x0008");
        for (const auto& [usage, name, full] : {
                 std::tuple{report::Usage{0x0b, 0x20}, "Hook Switch", "Hook Switch"},
                 {{0x0b, 0x21}, "Flash", "Flash"},
                 {{0x0b, 0x74}, "Answer On/Offf", "Answer On/Offf"},
                 {{0x0b, 0x01}, "0x0001", "Telephony 0x0001"},
                 {{0x0b, 0x22}, "0x0022", "Telephony 0x0022"},
                 {{0x0b, 0x23}, "0x0023", "Telephony 0x0023"},
                 {{0x0b, 0x24}, "0x0024", "Telephony 0x0024"},
                 {{0x0b, 0x25}, "0x0025", "Telephony 0x0025"},
                 {{0x0b, 0xb0}, "Key 0", "Key 0"},
                 {{0x0b, 0xb1}, "Key 1", "Key 1"},
                 {{0x0b, 0xba}, "Key Star", "Key Star"},
                 {{0x0b, 0x09}, "0x0009", "Telephony 0x0009"},
                 {{0x08, 0x09}, "0x0009", "Page 0x0008 0x0009"},
                 {{0x09, 0x00}, "0x0000", "Buttons 0x0000"},
                 {{0x09, 0x01}, "Button 1 (Primary)", "Button 1 (Primary)"},
                 {{0x09, 0xffff}, "Button 65535", "Button 65535"},
             }) {
            EXPECT_EQ(names.usage(usage), name);
            EXPECT_EQ(names.fullUsage(usage), full);
        }
    }
}

TEST(UsageNames, AreHexadecimalWithoutAUsableFile)
{
    const test::TempDirectory directory;
    const std::string path = directory.path() + "usb.ids";
    EXPECT_TRUE(UsageNames::load(path).empty());
    EXPECT_TRUE(UsageNames::load(directory.path()).empty());
    directory.file("usb.ids", "\n# nothing\n\t020  Of no page");
    EXPECT_TRUE(UsageNames::load(path).empty());
    EXPECT_EQ(UsageNames::load(path).usage({0x0b, 0x20}), "0x0020");
}

TEST(UsageNames, AreReadFromTheEndOfAFile)
{
    constexpr size_t block = size_t{32} * 1024; // what is read first
    constexpr size_t limit = size_t{16} * 1024 * 1024;
    const std::string pages = "HUT 08  LEDs\n\t017  Off-Hook\nHUT 0b  Telephony\n";
    const test::TempDirectory directory;
    const auto load = [&](size_t before, size_t after) {
        const auto blanks = [](size_t size) { return std::string(size, ' ') + '\n'; };
        const std::string text = (before ? blanks(before) : "") + pages + blanks(after);
        const UsageNames names = UsageNames::load(directory.file("usb.ids", text));
        return names.usage({0x08, 0x17}) + ", " + names.page(0x0b);
    };
    const size_t boundary = block - pages.size(); // the first read begins where the pages do
    for (const size_t before : {size_t{0}, size_t{1}, 3 * block, limit}) {
        for (size_t after = boundary - 8; after < boundary + 8; ++after)
            EXPECT_EQ(load(before, after), "Off-Hook, Telephony") << before << ' ' << after;
    }
    EXPECT_EQ(load(1, limit), "0x0017, Page 0x000b");
}

TEST(UsageNames, OfThisSystemHaveTheTelephonyPage)
{
    const UsageNames names = UsageNames::load();
    if (names.empty())
        GTEST_SKIP() << "usb.ids is not installed";
    EXPECT_EQ(names.page(0x0b), "Telephony");
    EXPECT_EQ(names.usage({0x0b, 0x2f}), "Phone Mute");
    EXPECT_EQ(names.usage({0x08, 0x17}), "Off-Hook");
}

} // namespace
