// What follows from a device's controls in a meeting: the sentences, and that the stack does as
// they say.
#include "hid/model/TelephonyStateMachine.h"
#include "tests/support/device_file.h"
#include "tools/ctl/explain/consequences.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace {

using Machine = KX::TelephonyStateMachine;

class Recorder final : public Machine::Output {
public:
    // Runs operations and input reports, and returns what follows from the last one.
    std::string run(const KX::TelephonyControls& controls, const std::string& steps)
    {
        static const std::map<std::string, void (Machine::*)()> operations
            = {{"ring", &Machine::Ring}, {"offhook", &Machine::OffHook},
                {"hangup", &Machine::HangUp}, {"mute", &Machine::Mute}};
        Machine machine(*this);
        machine.SetControls(controls);
        machine.HangUp(); // as after opening
        std::istringstream stream(steps);
        for (std::string step; stream >> step;) {
            story_.clear();
            if (const auto found = operations.find(step); found != operations.end())
                (machine.*found->second)();
            else
                machine.HandleReport(test::bytesFromHex(step));
        }
        return story_;
    }

private:
    void Notify(Machine::Event event) override
    {
        static constexpr const char* names[] = {"mute ", "unmute ", "off-hook ", "hang-up "};
        story_ += names[static_cast<size_t>(event)];
    }
    void Send(const KX::Bytes& report) override { story_ += report::toHex(report, "") + ' '; }

    std::string story_;
};

struct Meeting {
    explicit Meeting(const report::DescriptorBytes& descriptor)
        : layout(report::readLayout(descriptor))
        , map(descriptor, layout, names)
        , sentences(ctl::meetingConsequences(map, layout, names))
    {
    }

    // Whether one of the sentences has this part.
    [[nodiscard]] bool has(const std::string& part) const
    {
        return text().find(part) != std::string::npos;
    }

    [[nodiscard]] std::string text() const
    {
        std::string all;
        for (const std::string& sentence : sentences)
            all += '\n' + sentence;
        return all;
    }

    const report::UsageNames names = report::UsageNames::load();
    const report::Layout layout;
    const ctl::ControlMap map;
    const std::vector<std::string> sentences;
};

// The name of a device, or a descriptor.
Meeting meetingOf(const std::string& device)
{
    return Meeting(device.find(' ') == std::string::npos ? test::deviceDescriptor(device)
                                                         : test::bytesFromHex(device));
}

#define HEADSET "050b 0905 a101 1500 2501 7501 9501 "
#define RING "0508 0918 9102 "
#define OFF_HOOK "0508 0917 9102 "

// Part of a sentence, steps, and what follows from the last step.
TEST(Consequences, AreWhatTheStackDoes)
{
    for (const auto& [device, sentence, steps, follows] : {
             std::tuple{"no-telephony", "sends it nothing", "ring offhook 0101", ""},
             {"046d-0944", "sends the device no reports", "offhook mute hangup", ""},
             {"046d-0944", "No Ring LED: nothing", "ring 0802", ""},
             {"046d-0944", "only Phone Mute has an effect", "offhook 0800", ""},
             {"046d-0944", "every press of Phone Mute mutes, and none unmutes", "offhook 0801 0801",
                 "mute "},
             {HEADSET "0920 8102" OFF_HOOK, "It can neither mute nor end", "offhook 00", ""},
             {HEADSET "092f 8102", "Phone Mute is an absolute value", "offhook 01 01", "mute "},
             {HEADSET "0920 8102" RING, "No Off-Hook LED: no report", "ring offhook", "0000 "},
             {HEADSET "0920 8102" RING, "so the Ring LED stays dark", "offhook ring", ""},
             {HEADSET "092f 8102" RING, "No Hook Switch: nothing on the device answers a call",
                 "ring 01", "hang-up 0000 "},
             {HEADSET "092f 8102" RING, "answers or refuses a second", "offhook ring 01", ""},
             {"0b0e-0307", "Every other report rejects it, also Input reports 1, 4, 5 and 8",
                 "ring 010100", "hang-up 020000 020000 "},
             {"0b0e-0307", "bits of both Flash and Hook Switch answers", "offhook ring 020900",
                 "off-hook 020000 020100 "},
             {"0b0e-0307", "bits of both Flash and Hook Switch answers", "offhook ring 020800", ""},
             {"0b0e-0307", "both Line Busy Tone and Hook Switch refuses", "offhook ring 020300",
                 "hang-up 020000 020100 "},
             {"0b0e-0307", "While a second call rings, Phone Mute has no effect",
                 "offhook ring 020400", ""},
             {HEADSET "8501 0920 8102 8502 0921 8102" RING,
                 "Flash and Hook Switch are not in the same report", "offhook ring 0201", ""},
             {"047f-c056", "there is no Line Busy Tone", "offhook ring 0802", ""},
             {"047f-c056", "only the ring report is sent", "offhook ring", "1801 "},
             {"047f-c056", "it stays lit", "offhook mute hangup", "1800 1700 2000 "},
             {"047f-c056", "Hold LED is never lit", "offhook ring hangup", "1800 1700 2000 "},
             {"1395-0082", "it goes dark when a second call rings", "offhook mute ring", "0906 "},
             {HEADSET "8501 9502 0508 0909 0917 9102 8502 9501" RING,
                 "goes dark when a second call is answered or refused", "offhook mute ring offhook",
                 "0200 0102 "},
             {"1395-0082",
                 "Volume Decrement (page Consumer) is taken for Hook Switch and Play (page "
                 "Consumer) is taken for Flash, because Input report 25 has",
                 "ring 1902", "off-hook 0900 0902 "},
             {"047f-02e6", "Volume Decrement (page Consumer) is taken for Phone Mute",
                 "offhook ff02", "mute 2301 "},
             {"6993-b02b", "Page 0xff99 0x0004 is taken for Hook Switch, because Input report 155",
                 "ring 9b0100", "off-hook 020000 020100 "},
         }) {
        const Meeting meeting = meetingOf(device);
        EXPECT_TRUE(meeting.has(sentence)) << device << ": " << sentence << meeting.text();
        EXPECT_EQ(Recorder().run(meeting.map.stackControls(), steps), follows)
            << device << ": " << sentence;
    }
}

#define WITH_ID "050b 0905 a101 8501 7501 9501 "
#define PADDING " 9507 8101 "

// Buttons that no report can match, and bits that are not the button.
TEST(Consequences, SayWhatMatches)
{
    // The Report ID comes before the collection: the mask has none, but the reports do.
    const std::string idBefore
        = "050b 8502 0905 a101 7501 9504 0920 0997 092f 0921 8102 9504 8103 9501" RING "9507 9103";
    // The id is repeated: the masks are shorter than the report.
    const std::string idAgain = "050b 0905 a101 8503 7501 9502 0920 092f 8102 9506 8103 8504 9501 "
                                "0997 8102" PADDING "8503 9501 0921 8102" PADDING "9501" RING;
    const std::string longReport = WITH_ID "0920 8102 092f 8102 9506 8101 7508 9546 8103 7501 "
                                           "9501" RING "9507 9103";
    const std::string headsetWithoutId
        = HEADSET "0920 8102 0997 8102 092f 8102 0921 8102 9504 8103 "
                  "9501" RING "9507 9103 c0 050c 0901 a101 8501 9501 "
                  "09e9 8102" PADDING;
    const std::string consumerOf3 = "c0 050c 0901 a101 8503 9502 09e9 09ea 8102 9506 8103";
    const std::string otherBit = WITH_ID "7504 9502 0920 0921 8102 7501 9501" RING;
    for (const auto& [device, sentence, steps, follows] :
        {
            std::tuple{idBefore,
                "Kelprobe never recognises Hook Switch, Phone Mute, Line Busy Tone "
                "and Flash, because no report",
                "ring 0201", "hang-up 0000 "},
            {idBefore, "every report that it sends while the first call rings rejects the call",
                "ring 0201", "hang-up 0000 "},
            {idBefore, "During a call nothing on the device has an effect", "offhook 0204", ""},
            {idBefore, "Hook Switch: nothing on the device answers or refuses a second call",
                "offhook ring 0209", ""},
            {idAgain, "never recognises Hook Switch, Phone Mute and Flash,", "ring 030100",
                "hang-up 0300 "},
            {longReport, "never recognises Hook Switch and Phone Mute,", "offhook 0102", ""},
            {headsetWithoutId, "never recognises Hook Switch", "ring 0001", "hang-up 0000 "},
            {otherBit, "A report with the bits that Kelprobe takes for Flash and Hook Switch",
                "offhook ring 0103", "off-hook 0100 "},
            {otherBit, "a report with the bit of Hook Switch answers it", "ring 0101",
                "off-hook 0100 "},
            {WITH_ID "050c 0920 8102" RING, "the bit that Kelprobe takes for Hook Switch answers",
                "ring 0101", "off-hook 0100 "},
            {WITH_ID "050c 092f 8102",
                "only a report with the bit that Kelprobe takes for Phone Mute has", "offhook 0101",
                "mute "},
            {WITH_ID "092f 8102" PADDING "c0 050c 0901 a101 8502 09e9 8102" PADDING,
                "as long as its bit stays set, every further Input report 1 mutes again",
                "offhook 0101 0101", "mute "},
            {WITH_ID "9502 092f 0920 8102 9506 8103 9501" RING OFF_HOOK "0909 9102",
                "every further Input report 1 mutes or unmutes again", "offhook 0101 0101",
                "unmute 0102 "},
            {WITH_ID "0920 8102" PADDING "9501" RING "c0 050c 0901 a101 8503 9501 09e9 8102" PADDING
                     "8504 9508 8102",
                "Every other report rejects it, also Input report 4.", "ring 0301",
                "off-hook 0100 "},
            {WITH_ID "0920 8102" PADDING "8502 9501 0921 8102" PADDING "9501" RING + consumerOf3,
                "Only Input report 3 can answer a second call, with the bits that Kelprobe takes "
                "for Flash and Hook Switch.",
                "offhook ring 0301", "off-hook 0200 "},
            {"050b 0905 a101 8501 7501 9508 8103 7500 9501 0920 8102 7501 9508 8502 8103 9501" RING,
                "every Input report 1 answers it", "ring 0100", "off-hook 0200 "},
            {HEADSET "0920 8102 0507 0918 9102",
                "about the Ring LED is about the bit that Kelprobe takes for it", "ring", "0001 "},
            {WITH_ID "9502 0508 0909 0920 9102 8502 9501" OFF_HOOK,
                "shares a report with the Hold LED", "offhook mute hangup", "0200 0100 "},
        }) {
        const Meeting meeting = meetingOf(device);
        EXPECT_TRUE(meeting.has(sentence)) << device << ": " << sentence << meeting.text();
        EXPECT_EQ(Recorder().run(meeting.map.stackControls(), steps), follows)
            << device << ": " << sentence;
    }
    const Meeting noHookSwitch
        = meetingOf(WITH_ID "9502 0997 0921 8102 9506 8101 9501" RING + consumerOf3);
    EXPECT_FALSE(noHookSwitch.has("is taken for")) << noHookSwitch.text();
    EXPECT_FALSE(meetingOf(longReport).has("A report with"));
}

// The number of sentences, so that none is there that does not apply.
TEST(Consequences, ApplyToTheDevice)
{
    for (const auto& [device, count] : {std::pair{"no-telephony", 1u}, {"046d-0944", 4u},
             {"0b0e-0307", 7u}, {"047f-c056", 8u}, {"6993-b02b", 8u}, {"413c-8223", 7u}})
        EXPECT_EQ(meetingOf(device).sentences.size(), count) << device;
}

} // namespace
