// The meeting against a simulated speakerphone and the real host: every report that the device
// gets, every log line and every change the window sees, in one order.
#include "bus_test.h"
#include "hidcontroller.h"
#include "logrecorder.h"
#include "qt_environment.h"

#include <QCoreApplication>

#include <mutex>
#include <sstream>
#include <thread>

namespace {

[[maybe_unused]] const auto* const qt = QtEnvironment<QCoreApplication>::add();

const QString kSpeakerphone = QStringLiteral("0x0b0e-HID-0x0410#");
const QString kLampPerReport = QStringLiteral("0x047f-HID-0xc056#");

// What happened, in its order, from whichever thread.
class Story {
public:
    void add(std::string event)
    {
        const std::lock_guard guard(mutex_);
        events_.push_back(std::move(event));
    }
    size_t length()
    {
        const std::lock_guard guard(mutex_);
        return events_.size();
    }
    std::string take()
    {
        const std::lock_guard guard(mutex_);
        std::string text;
        for (const std::string& event : std::exchange(events_, {}))
            text += (text.empty() ? "" : "; ") + event;
        return text;
    }

private:
    std::mutex mutex_;
    std::vector<std::string> events_;
};

class Controller : public BusTest {
protected:
    void SetUp() override
    {
        BusTest::SetUp();
        device_ = &plug("speakerphone");
        record(*device_);
        QStringListModel* lines = LogRecorder::instance().logListModel();
        QObject::connect(
            lines, &QStringListModel::dataChanged, &here_, [this, lines](const QModelIndex& row) {
                const QString line = lines->data(row).toString();
                story_.add(line.startsWith(id_) ? line.mid(id_.size()).toStdString()
                                                : "?" + line.toStdString());
            });
    }

    void TearDown() override
    {
        controller_.reset(); // closes the device while there is a bus
        LogRecorder::instance().toggleClearLog();
        BusTest::TearDown();
    }

    void record(sim::UsbDevice& device)
    {
        device.setOutputCallback([this](const Bytes& report) { story_.add(sim::toHex(report)); });
    }

    // A controller with the speakerphone, and the meeting as `steps` have it.
    void start(const std::string& steps)
    {
        controller_ = std::make_unique<HidController>();
        controller_->selectDevice(id_);
        HidController* const c = controller_.get();
        const auto flag = [this, c](
                              const char* name, auto changed, bool (HidController::*get)() const) {
            QObject::connect(c, changed, &here_,
                [this, c, name, get] { story_.add(name + std::string((c->*get)() ? "+" : "-")); });
        };
        flag("mute", &HidController::sig_muteStateChanged, &HidController::muteState);
        flag("meeting", &HidController::sig_meetingStatusChanged, &HidController::meetingStatus);
        flag("ring", &HidController::sig_ringStateChanged, &HidController::ringState);
        perform(steps);
        story_.take();
    }

    // Does each of the words: a button of the window; a callback as the host makes it, on another
    // thread; or a report in hexadecimal that the device sends.
    void perform(const std::string& words)
    {
        std::istringstream stream(words);
        for (std::string word; stream >> word;) {
            if (!click(word) && !callBack(word))
                press(*sim::fromHex(word));
        }
    }

    bool click(const std::string& word)
    {
        if (word == "Mute")
            controller_->toggleMuteUnmute();
        else if (word == "Incoming")
            controller_->toggleRing();
        else if (word == "Hangup")
            controller_->toggleHangup();
        else if (word == "Pickup")
            controller_->togglePickup();
        else
            return false;
        return true;
    }

    // "command:N" or "state:KIND:VALUE"
    bool callBack(const std::string& word)
    {
        unsigned kind = 0;
        uint8_t value = 0;
        std::function<void()> call;
        if (sscanf(word.c_str(), "command:%u", &kind) == 1)
            call = [&] { controller_->OnCommand(static_cast<KXCommand>(kind), nullptr); };
        else if (sscanf(word.c_str(), "state:%u:%hhu", &kind, &value) == 2)
            call = [&] { controller_->OnState(static_cast<KXState>(kind), &value); };
        else
            return false;
        const size_t before = story_.length();
        std::thread(call).join();
        EXPECT_EQ(story_.length(), before) << "the GUI thread has not had its turn";
        QCoreApplication::processEvents();
        return true;
    }

    // The stack answers on its own thread with `answers` reports, and only then, so that there is
    // one order, the GUI thread has its turn.
    void press(const Bytes& report)
    {
        const size_t before = story_.length();
        const auto told = [&](size_t more) { return story_.length() >= before + more; };
        ASSERT_TRUE(device_->inject(report));
        ASSERT_TRUE(eventually([&] { return told(answers_); }));
        ASSERT_TRUE(eventually([&] {
            QCoreApplication::processEvents();
            return told(answers_ + 1);
        }));
    }

    Story story_;
    QString id_ = kSpeakerphone;
    size_t answers_ = 0;
    sim::UsbDevice* device_ = nullptr;
    std::unique_ptr<HidController> controller_;
    QObject here_;
};

#define ONHOOK "03 00 00; 03 00 00; 03 00 00"
#define OFFHOOK "03 00 00; 03 01 00"

TEST_F(Controller, EveryStepOfAMeeting)
{
    struct Row {
        const char* before;
        const char* step;
        const char* story;
    };
    for (const Row& row : {
             // From the window.
             Row{"", "Mute Pickup Hangup", ""},
             Row{"", "Incoming", "03 08 00;  Incoming Meeting; ring+"},
             Row{"Incoming", "Incoming", " Incoming Meeting"},
             Row{"Incoming", "Mute", ""},
             Row{"Incoming", "Hangup", ONHOOK ";  Reject Meeting from UI; ring-"},
             Row{"Incoming", "Pickup", OFFHOOK ";  Accept Meeting from UI; meeting+; ring-"},
             Row{"Incoming Pickup", "Pickup Hangup", ""},
             Row{"Incoming Pickup", "Mute", "03 05 00; mute+;  Muted from UI"},
             Row{"Incoming Pickup Mute", "Mute", "03 01 00; mute-;  Unmuted from UI"},
             Row{"Incoming Pickup", "Incoming",
                 "03 09 00;  In Meeting and Incoming a New Meeting; ring+"},
             Row{"Incoming Pickup Incoming", "Hangup",
                 ONHOOK "; " OFFHOOK ";  In Meeting and Reject a New Meeting from UI; ring-"},
             Row{"Incoming Pickup Incoming", "Pickup",
                 ONHOOK "; " OFFHOOK ";  In Meeting and Accept a New Meeting from UI; ring-"},
             Row{"Incoming Pickup Incoming", "Mute", "mute+;  Muted from UI"},
             // From the device, ringing or not.
             Row{"", "command:0", OFFHOOK "; meeting+;  Accept Meeting from device"},
             Row{"", "command:1", ONHOOK ";  Reject Meeting from device"},
             Row{"Incoming", "command:0", OFFHOOK "; meeting+;  Accept Meeting from device; ring-"},
             Row{"Incoming", "command:1", ONHOOK ";  Reject Meeting from device; ring-"},
             Row{"Incoming Pickup Incoming", "command:0",
                 OFFHOOK ";  Accept Meeting from device; ring-"},
             Row{"Incoming Pickup Incoming", "command:1",
                 OFFHOOK ";  In Meeting and Reject a New Meeting from device; ring-"},
             Row{"Incoming", "command:2 command:255", ""},
             Row{"", "state:0:2", "mute+;  Muted from device"},
             Row{"", "state:0:0", " Unmuted from device"},
             Row{"Incoming Pickup Mute", "state:0:0", "mute-;  Unmuted from device"},
             Row{"", "state:1:1 state:2:1", ""},
         }) {
        start(row.before);
        perform(row.step);
        EXPECT_EQ(story_.take(), row.story) << row.before << " | " << row.step;
    }
}

TEST_F(Controller, HearsTheButtonsOfTheDevice)
{
    struct Row {
        const char* before;
        const char* report;
        size_t answers; // reports by the stack itself, which come first
        const char* story;
    };
    for (const Row& row : {
             Row{"Incoming", "030100", 2,
                 OFFHOOK "; " OFFHOOK "; meeting+;  Accept Meeting from device; ring-"},
             Row{"Incoming", "030000", 2,
                 "03 00 00; 03 00 00; " ONHOOK ";  Reject Meeting from device; ring-"},
             Row{"Incoming Pickup", "030800", 1, "03 05 00; mute+;  Muted from device"},
             Row{"Incoming Pickup Mute", "030800", 1, "03 01 00; mute-;  Unmuted from device"},
             Row{"Incoming Pickup Incoming", "031100", 2,
                 OFFHOOK "; " OFFHOOK ";  Accept Meeting from device; ring-"},
             Row{"Incoming Pickup Incoming", "030300", 2,
                 OFFHOOK "; " OFFHOOK ";  In Meeting and Reject a New Meeting from device; ring-"},
         }) {
        start(row.before);
        answers_ = row.answers;
        perform(row.report);
        EXPECT_EQ(story_.take(), row.story) << row.before << " | " << row.report;
    }
}

TEST_F(Controller, TheMeetingGoesOnWithAnotherDevice)
{
    record(plug("lamp-per-report"));
    start("Incoming Pickup Mute");
    controller_->selectDevice(kSpeakerphone);
    EXPECT_EQ(story_.take(), "") << "the same again";

    // The last line of the old device comes while it is still there.
    QObject::connect(LogRecorder::instance().logListModel(), &QStringListModel::dataChanged, &here_,
        [&] { id_ = kLampPerReport; });
    controller_->selectDevice(kLampPerReport);
    EXPECT_EQ(story_.take(),
        ONHOOK ";  KXHost Destroyed; "
               "18 00; 17 00; 20 00;  KXHost Created; 18 00; 17 01; 09 01");
}

TEST_F(Controller, SelectsWithThreeReportsAndLeavesTheDeviceOnHook)
{
    controller_ = std::make_unique<HidController>();
    controller_->selectDevice(kSpeakerphone);
    EXPECT_EQ(story_.take(), ONHOOK ";  KXHost Created");
    perform("Incoming");
    story_.take();
    controller_.reset();
    EXPECT_EQ(story_.take(), ONHOOK);
    EXPECT_FALSE(device_->claimed());
}

TEST_F(Controller, AHostCountsAsCreatedAlthoughItsDeviceIsNotThere)
{
    id_ = QStringLiteral("0x1234-HID-0x5678#");
    controller_ = std::make_unique<HidController>();
    controller_->selectDevice(id_);
    perform("Incoming");
    EXPECT_EQ(story_.take(), " KXHost Created;  Incoming Meeting");
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
    EXPECT_EQ(story_.take(), "? Incoming Meeting") << "not even the id is kept";

    controller->installFailing();
    controller_->selectDevice(kSpeakerphone);
    perform("command:0 state:0:1");
    EXPECT_EQ(story_.take(), "");
    perform("Pickup");
    EXPECT_EQ(story_.take(), " Accept Meeting from UI");
}

} // namespace
