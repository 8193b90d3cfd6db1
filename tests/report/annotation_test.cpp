#include "report/annotation.h"
#include "tests/support/device_file.h"

#include <gtest/gtest.h>

namespace {

const report::UsageNames& fewNames()
{
    static const auto names = report::UsageNames::parse("HUT 08  LEDs\n\t017  Off-Hook\n"
                                                        "HUT 0b  Telephony\n\t020  Hook Switch\n");
    return names;
}

std::string annotated(const std::string& descriptor)
{
    const std::vector<uint8_t> bytes = test::bytesFromHex(descriptor);
    std::string lines;
    for (const report::AnnotatedItem& item : report::annotate(bytes, fewNames()))
        lines += std::string(item.depth, '>') + item.text + "; ";
    return lines;
}

TEST(Annotation, PutsEachItemIntoWords)
{
    for (const auto& [items, expected] : {
             std::pair{"050b", "Usage Page (Telephony)"},
             {"0630ff", "Usage Page (Page 0xff30)"},
             {"04", "Usage Page (Page 0x0000)"},
             {"0b17000800", "Usage (LEDs: Off-Hook)"},
             {"0b0100 30ff", "Usage (Page 0xff30: 0x0001)"},
             {"0931", "Usage (0x0031)"},
             {"1901", "Usage Minimum (0x0001)"},
             {"2a0001", "Usage Maximum (0x0100)"},
             {"8503", "Report ID (3)"},
             {"7501", "Report Size (1)"},
             {"97ffffffff", "Report Count (4294967295)"},
             {"15ff", "Logical Minimum (-1)"},
             {"16ff00", "Logical Minimum (255)"},
             {"25ff", "Logical Maximum (255)"},
             {"3500", "Physical Minimum (0)"},
             {"46ffff", "Physical Maximum (65535)"},
             {"550f", "Unit Exponent (-1)"},
             {"5507", "Unit Exponent (7)"},
             {"55fe", "Unit Exponent (-2)"},
             {"660110", "Unit (0x1001)"},
             {"a4", "Push"},
             {"b4", "Pop"},
             {"3901", "Designator Index (1)"},
             {"7902", "String Index (2)"},
             {"a901", "Delimiter (Open)"},
             {"a8", "Delimiter (Close)"},
             {"a902", "Delimiter (2)"},
             {"a100", "Collection (Physical)"},
             {"a106", "Collection (Usage Modifier)"},
             {"a107", "Collection (Reserved 0x07)"},
             {"a180", "Collection (Vendor 0x80)"},
             {"c0", "End Collection"},
             {"8122", "Input (Data, Variable, Absolute, No Preferred State)"},
             {"8182", "Input (Data, Variable, Absolute)"},
             {"80", "Input (Data, Array, Absolute)"},
             {"9187", "Output (Constant, Variable, Relative, Volatile)"},
             {"b2f801",
                 "Feature (Data, Array, Absolute, Wrap, Nonlinear, No Preferred State, Null State, "
                 "Volatile, Buffered Bytes)"},
             {"fe0512 0102030405", "Long item (tag 0x12, 5 bytes)"},
             {"fe01f0 01", "Long item (tag 0xf0, 1 byte)"},
             {"fe0012", "Long item (tag 0x12, 0 bytes)"},
             {"fc", "Reserved item"},
             {"ff00000000", "Reserved item"},
             {"d0", "Reserved item"},
             {"0600", "Usage Page, cut off by the end of the descriptor"},
             {"fe0212ff", "Long item, cut off by the end of the descriptor"},
             {"fe", "Long item, cut off by the end of the descriptor"},
             {"f1", "Reserved item, cut off by the end of the descriptor"},
         })
        EXPECT_EQ(annotated(items), std::string(expected) + "; ") << items;
}

TEST(Annotation, KnowsWhatOtherItemsSay)
{
    for (const auto& [items, expected] : {
             // The page of a usage is the one at the Main item; Pop brings the earlier one back.
             std::pair{"050b 0920 0508 9100 a4 050b 0920 8100 b4 0917 9100",
                 "Usage Page (Telephony); Usage (0x0020); Usage Page (LEDs); "
                 "Output (Data, Array, Absolute); Push; Usage Page (Telephony); "
                 "Usage (Hook Switch); Input (Data, Array, Absolute); Pop; Usage (Off-Hook); "
                 "Output (Data, Array, Absolute); "},
             // A maximum has a sign if the minimum is negative, which may come after it.
             {"2580 1580 45ff 35ff 8101 1500 2580 3500 45ff c0",
                 "Logical Maximum (-128); Logical Minimum (-128); Physical Maximum (-1); "
                 "Physical Minimum (-1); Input (Constant, Array, Absolute); Logical Minimum (0); "
                 "Logical Maximum (128); Physical Minimum (0); Physical Maximum (255); "
                 "End Collection; "},
             {"c0 a100 8503 a101 85 04 c0 8505 c0 8506",
                 "End Collection; Collection (Physical); >Report ID (3); "
                 ">Collection (Application); >>Report ID (4); >End Collection; >Report ID (5); "
                 "End Collection; Report ID (6); "},
         })
        EXPECT_EQ(annotated(items), expected) << items;
}

} // namespace
