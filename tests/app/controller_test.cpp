// The meeting with simulated devices and the real host: every report that a device receives, every
// log line and every change of a property, in their order.
#include "app/hidcontroller.h"
#include "app/logrecorder.h"
#include "tests/support/bus_test.h"

#include <QCoreApplication>

#include <cctype>
#include <sstream>

namespace {

QString idOf(const char* profile)
{
    const sim::UsbDeviceInfo& info = sim::findProfile(profile)->info;
    return QString::asprintf("0x%04x-HID-0x%04x#", info.vendorId, info.productId);
}

const QString kSpeakerphone = idOf("speakerphone");   // "A" in stories
const QString kLedPerReport = idOf("led-per-report"); // "B"

#define RING "03 08 00; "
#define ONHOOK "03 00 00; 03 00 00; 03 00 00; "
#define OFFHOOK "03 00 00; 03 01 00; "

class Controller : public BusTest {
protected:
    void SetUp() override
    {
        BusTest::SetUp();
        device_ = &record(plug("speakerphone"));
        auto* const lines = LogRecorder::instance().logListModel();
        QObject::connect(lines, &QStringListModel::dataChanged, &here_, [=, this](auto row) {
            QString line = lines->data(row).toString();
            line.replace(kSpeakerphone, QStringLiteral("A"));
            story_.add(line.replace(kLedPerReport, QStringLiteral("B")).toStdString());
        });
    }

    void TearDown() override
    {
        controller_.reset(); // before the bus
        BusTest::TearDown();
    }

    // Creates a controller with the speakerphone and performs `steps`. After that the story also
    // has the changes of the properties.
    void start(const std::string& steps = "")
    {
        controller_ = std::make_unique<HidController>();
        controller_->selectDevice(kSpeakerphone);
        perform(steps);
        (void)story_.take();
        const HidController* const c = controller_.get();
        QObject::connect(c, &HidController::sig_muteStateChanged, &here_,
            [=, this] { story_.add(c->muteState() ? "mute+" : "mute-"); });
        QObject::connect(c, &HidController::sig_meetingStatusChanged, &here_,
            [=, this] { story_.add(c->meetingStatus() ? "meeting+" : "meeting-"); });
        QObject::connect(c, &HidController::sig_ringStateChanged, &here_,
            [=, this] { story_.add(c->ringState() ? "ring+" : "ring-"); });
    }

    // Performs each word: the name of a button's slot without "toggle"; "command:N" or
    // "state:KIND:VALUE" from the host; "REPORT:N" from the device, to which the stack itself
    // responds with N reports.
    void perform(const std::string& words)
    {
        std::istringstream stream(words);
        for (std::string word; stream >> word;) {
            unsigned number = 0;
            uint8_t value = 0;
            if (sscanf(word.c_str(), "command:%u", &number) == 1)
                controller_->OnCommand(static_cast<KXCommand>(number), nullptr);
            else if (sscanf(word.c_str(), "state:%u:%hhu", &number, &value) == 2)
                controller_->OnState(static_cast<KXState>(number), &value);
            else if (std::isupper(word.front()))
                QMetaObject::invokeMethod(controller_.get(), ("toggle" + word).c_str());
            else
                press(sim::fromHex(word.substr(0, 6)).value(), std::stoul(word.substr(7)));
            QCoreApplication::processEvents();
        }
    }

    // The GUI thread processes its events after the stack's reports, so the order is always the
    // same.
    void press(const Bytes& report, size_t answers)
    {
        const size_t answered = story_.length() + answers;
        ASSERT_TRUE(device_->inject(report));
        ASSERT_TRUE(eventually([&] { return story_.length() == answered; }));
        ASSERT_TRUE(eventually([&] {
            QCoreApplication::processEvents();
            return story_.length() > answered;
        }));
    }

    sim::UsbDevice* device_ = nullptr;
    std::unique_ptr<HidController> controller_;
    QObject here_;
};

// The steps before, the step, and the story of it.
// clang-format off
constexpr const char* kSteps[][3] = {
    // From the window.
    {"", "MuteUnmute Pickup Hangup", ""},
    {"", "Ring", RING "A Incoming Meeting; ring+; "},
    {"Ring", "Ring", "A Incoming Meeting; "},
    {"Ring", "MuteUnmute", ""},
    {"Ring", "Hangup", ONHOOK "A Reject Meeting from UI; ring-; "},
    {"Ring", "Pickup", OFFHOOK "A Accept Meeting from UI; meeting+; ring-; "},
    {"Ring Pickup", "Pickup Hangup", ""},
    {"Ring Pickup", "MuteUnmute", "03 05 00; mute+; A Muted from UI; "},
    {"Ring Pickup MuteUnmute", "MuteUnmute", "03 01 00; mute-; A Unmuted from UI; "},
    {"Ring Pickup", "Ring", "03 09 00; A In Meeting and Incoming a New Meeting; ring+; "},
    {"Ring Pickup Ring", "MuteUnmute", "mute+; A Muted from UI; "},
    {"Ring Pickup Ring", "Hangup",
        ONHOOK OFFHOOK "A In Meeting and Reject a New Meeting from UI; ring-; "},
    {"Ring Pickup Ring", "Pickup",
        ONHOOK OFFHOOK "A In Meeting and Accept a New Meeting from UI; ring-; "},
    // From the host, in any state of the meeting.
    {"", "command:0", OFFHOOK "meeting+; A Accept Meeting from device; "},
    {"", "command:1", ONHOOK "A Reject Meeting from device; "},
    {"Ring", "command:2 command:255 state:1:1 state:2:1", ""},
    {"", "state:0:2", "mute+; A Muted from device; "},
    {"", "state:0:0", "A Unmuted from device; "},
    // From the device. The reports of the stack come first.
    {"Ring", "030100:2", OFFHOOK OFFHOOK "meeting+; A Accept Meeting from device; ring-; "},
    {"Ring", "030000:2", "03 00 00; 03 00 00; " ONHOOK "A Reject Meeting from device; ring-; "},
    {"Ring Pickup", "030800:1", "03 05 00; mute+; A Muted from device; "},
    {"Ring Pickup MuteUnmute", "030800:1", "03 01 00; mute-; A Unmuted from device; "},
    {"Ring Pickup Ring", "031100:2", OFFHOOK OFFHOOK "A Accept Meeting from device; ring-; "},
    {"Ring Pickup Ring", "030300:2",
        OFFHOOK OFFHOOK "A In Meeting and Reject a New Meeting from device; ring-; "},
};
// clang-format on

TEST_F(Controller, EveryStepOfAMeeting)
{
    for (const auto& [before, step, story] : kSteps) {
        start(before);
        perform(step);
        EXPECT_EQ(story_.take(), story) << before << " | " << step;
    }
}

// While the GUI thread is busy, both devices and another part of the program queue calls.
TEST_F(Controller, TheMeetingContinuesWithAnotherDeviceWithoutTheEventsOfTheOld)
{
    auto& other = record(plug("led-per-report"));
    start();
    controller_->selectDevice(kSpeakerphone);
    EXPECT_EQ(story_.take(), "") << "the same again";
    perform("Ring Pickup MuteUnmute");
    (void)story_.take();
    ASSERT_TRUE(device_->inject({3, 8, 0}));
    EXPECT_EQ(storyLike("03 01 00; "), "03 01 00; ") << "the LED comes after the event";
    QMetaObject::invokeMethod(controller_.get(), "toggleRing", Qt::QueuedConnection);
    controller_->selectDevice(QStringLiteral("gone")); // a host is there, its device is not
    EXPECT_EQ(story_.take(), ONHOOK "A KXHost Destroyed; gone KXHost Created; ");
    controller_->selectDevice(kLedPerReport);
    EXPECT_EQ(story_.take(),
        "gone KXHost Destroyed; "
        "18 00; 17 00; 20 00; B KXHost Created; 18 00; 17 01; 09 01; ");
    ASSERT_TRUE(other.inject({8, 1}));
    EXPECT_EQ(storyLike("09 00; "), "09 00; ");
    QCoreApplication::processEvents();
    EXPECT_EQ(story_.take(),
        "18 01; B In Meeting and Incoming a New Meeting; ring+; mute-; B Unmuted from device; ");
    controller_.reset();
    EXPECT_EQ(story_.take(), "18 00; 17 00; 20 00; ");
    EXPECT_FALSE(other.claimed());
}

} // namespace
