// The meeting against simulated devices and the real host: every report that a device gets, every
// log line and every change the window sees, in one order.
#include "bus_test.h"
#include "hidcontroller.h"
#include "logrecorder.h"
#include "qt_environment.h"

#include <QCoreApplication>

#include <map>
#include <mutex>
#include <sstream>
#include <thread>

namespace {

[[maybe_unused]] const auto* const qt = QtEnvironment<QCoreApplication>::add();

const QString kSpeakerphone = QStringLiteral("0x0b0e-HID-0x0410#");  // "A" in stories
const QString kLampPerReport = QStringLiteral("0x047f-HID-0xc056#"); // "B"

#define RING "03 08 00; "
#define ONHOOK "03 00 00; 03 00 00; 03 00 00; "
#define OFFHOOK "03 00 00; 03 01 00; "

// What happened, in its order, from whichever thread; each event with "; " behind it.
class Story {
public:
    void add(const std::string& event)
    {
        const std::lock_guard guard(mutex_);
        text_ += event + "; ";
        ++length_;
    }
    size_t length()
    {
        const std::lock_guard guard(mutex_);
        return length_;
    }
    std::string take()
    {
        const std::lock_guard guard(mutex_);
        length_ = 0;
        return std::exchange(text_, {});
    }

private:
    std::mutex mutex_;
    std::string text_;
    size_t length_ = 0;
};

class Controller : public BusTest {
protected:
    void SetUp() override
    {
        BusTest::SetUp();
        record(device_ = &plug("speakerphone"));
        auto* const lines = LogRecorder::instance().logListModel();
        QObject::connect(lines, &QStringListModel::dataChanged, &here_, [=, this](auto row) {
            QString line = lines->data(row).toString();
            line.replace(kSpeakerphone, QStringLiteral("A"));
            story_.add(line.replace(kLampPerReport, QStringLiteral("B")).toStdString());
        });
    }

    void TearDown() override
    {
        controller_.reset(); // closes the device while there is a bus
        BusTest::TearDown();
    }

    void record(sim::UsbDevice* device)
    {
        device->setOutputCallback([this](const Bytes& report) { story_.add(sim::toHex(report)); });
    }

    // Adds "NAME+" or "NAME-" to the story when the property changes.
    void record(
        const char* name, void (HidController::*changed)(), bool (HidController::*get)() const)
    {
        QObject::connect(controller_.get(), changed, &here_,
            [=, this] { story_.add(name + std::string((controller_.get()->*get)() ? "+" : "-")); });
    }

    // A controller with the speakerphone, and the meeting as `steps` have it.
    void start(const std::string& steps = "")
    {
        controller_ = std::make_unique<HidController>();
        controller_->selectDevice(kSpeakerphone);
        perform(steps);
        (void)story_.take();
        record("mute", &HidController::sig_muteStateChanged, &HidController::muteState);
        record("meeting", &HidController::sig_meetingStatusChanged, &HidController::meetingStatus);
        record("ring", &HidController::sig_ringStateChanged, &HidController::ringState);
    }

    // Does each of the words: a button of the window; "command:N" or "state:KIND:VALUE", from the
    // host; "REPORT:N", from the device, which the stack itself answers with N reports.
    void perform(const std::string& words)
    {
        static const std::map<std::string, void (HidController::*)()> buttons = {
            {"Mute", &HidController::toggleMuteUnmute},
            {"Pickup", &HidController::togglePickup},
            {"Hangup", &HidController::toggleHangup},
            {"Incoming", &HidController::toggleRing},
        };
        std::istringstream stream(words);
        for (std::string word; stream >> word;) {
            unsigned number = 0;
            uint8_t value = 0;
            if (const auto button = buttons.find(word); button != buttons.end())
                (controller_.get()->*button->second)();
            else if (sscanf(word.c_str(), "command:%u", &number) == 1)
                call([&] { controller_->OnCommand(static_cast<KXCommand>(number), nullptr); });
            else if (sscanf(word.c_str(), "state:%u:%hhu", &number, &value) == 2)
                call([&] { controller_->OnState(static_cast<KXState>(number), &value); });
            else
                press(sim::fromHex(word.substr(0, 6)).value(), std::stoul(word.substr(7)));
        }
    }

    // As the host does, on another thread.
    void call(const std::function<void()>& callback)
    {
        const size_t before = story_.length();
        std::thread(callback).join();
        EXPECT_EQ(story_.length(), before) << "the GUI thread has not had its turn";
        QCoreApplication::processEvents();
    }

    // The GUI thread has its turn only after the stack's answers, so that there is one order.
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

    Story story_;
    sim::UsbDevice* device_ = nullptr;
    std::unique_ptr<HidController> controller_;
    QObject here_;
};

struct Step {
    const char* before;
    const char* step;
    const char* story;
};

// clang-format off
const Step kSteps[] = {
    // From the window.
    {"", "Mute Pickup Hangup", ""},
    {"", "Incoming", RING "A Incoming Meeting; ring+; "},
    {"Incoming", "Incoming", "A Incoming Meeting; "},
    {"Incoming", "Mute", ""},
    {"Incoming", "Hangup", ONHOOK "A Reject Meeting from UI; ring-; "},
    {"Incoming", "Pickup", OFFHOOK "A Accept Meeting from UI; meeting+; ring-; "},
    {"Incoming Pickup", "Pickup Hangup", ""},
    {"Incoming Pickup", "Mute", "03 05 00; mute+; A Muted from UI; "},
    {"Incoming Pickup Mute", "Mute", "03 01 00; mute-; A Unmuted from UI; "},
    {"Incoming Pickup", "Incoming", "03 09 00; A In Meeting and Incoming a New Meeting; ring+; "},
    {"Incoming Pickup Incoming", "Mute", "mute+; A Muted from UI; "},
    {"Incoming Pickup Incoming", "Hangup",
        ONHOOK OFFHOOK "A In Meeting and Reject a New Meeting from UI; ring-; "},
    {"Incoming Pickup Incoming", "Pickup",
        ONHOOK OFFHOOK "A In Meeting and Accept a New Meeting from UI; ring-; "},
    // From the host, whatever the meeting is.
    {"", "command:0", OFFHOOK "meeting+; A Accept Meeting from device; "},
    {"", "command:1", ONHOOK "A Reject Meeting from device; "},
    {"Incoming", "command:2 command:255", ""},
    {"", "state:0:2", "mute+; A Muted from device; "},
    {"", "state:0:0", "A Unmuted from device; "},
    {"", "state:1:1 state:2:1", ""},
    // From the device: first the stack's own answer.
    {"Incoming", "030100:2",
        OFFHOOK OFFHOOK "meeting+; A Accept Meeting from device; ring-; "},
    {"Incoming", "030000:2",
        "03 00 00; 03 00 00; " ONHOOK "A Reject Meeting from device; ring-; "},
    {"Incoming Pickup", "030800:1", "03 05 00; mute+; A Muted from device; "},
    {"Incoming Pickup Mute", "030800:1", "03 01 00; mute-; A Unmuted from device; "},
    {"Incoming Pickup Incoming", "031100:2",
        OFFHOOK OFFHOOK "A Accept Meeting from device; ring-; "},
    {"Incoming Pickup Incoming", "030300:2",
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

TEST_F(Controller, SelectsADeviceAndLeavesItOnHook)
{
    controller_ = std::make_unique<HidController>();
    controller_->selectDevice(kSpeakerphone);
    EXPECT_EQ(story_.take(), ONHOOK "A KXHost Created; ");
    controller_->selectDevice(kSpeakerphone);
    EXPECT_EQ(story_.take(), "") << "the same again";
    perform("Incoming");
    EXPECT_EQ(story_.take(), RING "A Incoming Meeting; ");
    controller_.reset();
    EXPECT_EQ(story_.take(), ONHOOK);
    EXPECT_FALSE(device_->claimed());
}

TEST_F(Controller, TheMeetingGoesOnWithAnotherDevice)
{
    record(&plug("lamp-per-report"));
    start("Incoming Pickup Mute");
    controller_->selectDevice(kLampPerReport);
    EXPECT_EQ(story_.take(),
        ONHOOK "A KXHost Destroyed; 18 00; 17 00; 20 00; B KXHost Created; 18 00; 17 01; 09 01; ");
    controller_->selectDevice(QStringLiteral("gone")); // a host is there, its device is not
    EXPECT_EQ(story_.take(), "18 00; 17 00; 20 00; B KXHost Destroyed; gone KXHost Created; ");
}

class WithoutFactory : public HidController {
public:
    WithoutFactory() { m_createHost = nullptr; }
    void installFailing()
    {
        m_createHost = [](IKXHostCallback*) -> IKXHost* { return nullptr; };
    }
};

TEST_F(Controller, WithoutAHostHearsNothingAndSendsNothing)
{
    auto* controller = new WithoutFactory;
    controller_.reset(controller);
    EXPECT_FALSE(controller->createHost());
    controller_->selectDevice(kSpeakerphone);
    perform("Incoming");
    EXPECT_EQ(story_.take(), " Incoming Meeting; ") << "not even the id is kept";

    controller->installFailing();
    controller_->selectDevice(kSpeakerphone);
    perform("command:0 state:0:1 Pickup");
    EXPECT_EQ(story_.take(), "A Accept Meeting from UI; ");
}

} // namespace
