#include "sim_process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

using Words = std::vector<std::string>;

class KelprobeSim : public testing::Test {
protected:
    void SetUp() override
    {
        directory_ = "/tmp/simXXXXXX"; // short: sockets have their places in it
        ASSERT_NE(mkdtemp(directory_.data()), nullptr);
    }
    void TearDown() override
    {
        EXPECT_TRUE(fs::is_empty(directory_)) << "a bus was left behind";
        fs::remove_all(directory_);
    }

    // The client with the speakerphone, unless there are other profiles.
    SimProcess run(const Words& steps, Words profiles = {}, const std::string& device = "0b0e 0410")
    {
        Words arguments = {"run"};
        arguments.insert(arguments.end(), profiles.begin(), profiles.end());
        arguments.insert(
            arguments.end(), {"--", KELPROBE_SIM_CLIENT, device.substr(0, 4), device.substr(5)});
        arguments.insert(arguments.end(), steps.begin(), steps.end());
        return SimProcess(arguments, directory_);
    }
    SimProcess runProgram(const Words& arguments) { return SimProcess(arguments, directory_); }

private:
    std::string directory_;
};

TEST_F(KelprobeSim, TellsOfLampsAndPresses)
{
    SimProcess sim = run({"open", "w", "030000", "w", "030800", "r", "030100", "w", "030000", "w",
        "030100", "r", "030900", "r", "030100", "w", "030500", "gone"});
    EXPECT_EQ(sim.line(), "no change           03 00 00");
    EXPECT_EQ(sim.line(), "ring lamp on        03 08 00");
    sim.command("hook");
    EXPECT_EQ(sim.line(), "hook switch pressed 03 01 00");
    EXPECT_EQ(sim.line(), "ring lamp off       03 00 00");
    EXPECT_EQ(sim.line(), "off-hook lamp on    03 01 00");
    sim.command("mute");
    EXPECT_EQ(sim.line(), "mute pressed        03 09 00");
    EXPECT_EQ(sim.line(), "mute released       03 01 00");
    EXPECT_EQ(sim.line(), "mute lamp on        03 05 00");
    sim.endInput();
    sim.signal(SIGTERM);
    EXPECT_EQ(sim.exitStatus(), 128 + SIGTERM);
}

TEST_F(KelprobeSim, AnswersEveryCommand)
{
    SimProcess sim = runProgram({"run", "speakerphone", "webcam", "--", "sleep", "60"});
    const struct {
        const char* command;
        std::vector<const char*> answers;
    } cases[] = {
        {"raw 01 02", {"1: raw report          01 02  (no program listens)"}},
        {" 1 : hook off ", {"1: hook switch pressed 03 01 00  (no program listens)"}},
        {"", {}},
        {"2:mute\r",
            {"2: mute pressed        08 01  (no program listens)",
                "2: mute released       08 00  (no program listens)"}},
        {"2: flash", {"2: the device has no such button"}},
        {"3: mute", {"1: no such device"}},
        {"x: mute", {"1: no such device"}},
        {"raw 0", {"1: not understood: raw 0 (try help)"}},
        {"dance", {"1: not understood: dance (try help)"}},
        {"hook up", {"1: not understood: hook up (try help)"}},
        {"fault claim x", {"1: not understood: fault claim x (try help)"}},
        {"fault short", {"1: not understood: fault short (try help)"}},
        {"fault write 3", {"1: fault write 3"}},
        {"fault flood 2147483647", {"1: fault flood 2147483647"}},
        {"fault none", {"1: fault none"}},
        {"unplug", {"1: unplugged"}},
        {"replug", {"1: plugged in"}},
    };
    for (const auto& testCase : cases) {
        sim.command(testCase.command);
        for (const char* answer : testCase.answers)
            EXPECT_EQ(sim.line(), answer) << testCase.command;
    }
    sim.command("help");
    EXPECT_EQ(sim.line().value_or("").substr(0, 8), "Commands");
}

TEST_F(KelprobeSim, FaultsReachTheProgram)
{
    for (const char* fault : {"claim", "detach", "open"}) {
        SimProcess sim = run({"open", "w", "030000", "r", "01", "fail"});
        ASSERT_TRUE(sim.line()) << "the program listens";
        sim.command(std::string("fault ") + fault);
        sim.command("raw 01");
        EXPECT_EQ(sim.exitStatus(), 0) << fault;
    }
}

TEST_F(KelprobeSim, ADeviceComesBack)
{
    SimProcess sim
        = run({"open", "w", "030000", "gone", "open", "w", "030800"}, {"webcam", "speakerphone"});
    EXPECT_EQ(sim.line(), "2: no change           03 00 00");
    sim.command("2: replug");
    EXPECT_EQ(sim.rest(), "2: plugged in\n2: ring lamp on        03 08 00\n");
    EXPECT_EQ(sim.exitStatus(), 0);
}

TEST_F(KelprobeSim, AKilledProgramLeavesTheDeviceUsable)
{
    const std::string client = std::string(KELPROBE_SIM_CLIENT) + " 0b0e 0410 open ";
    SimProcess sim = runProgram({"run", "--", "sh", "-c", client + "kill; " + client + "w 030800"});
    EXPECT_EQ(sim.rest(), "ring lamp on        03 08 00\n");
    EXPECT_EQ(sim.exitStatus(), 0);
}

TEST_F(KelprobeSim, EndsAsTheProgramDoes)
{
    const struct {
        Words arguments;
        int status;
    } cases[] = {
        {{"run", "--", "sh", "-c", "exit 37"}, 37},
        {{"run", "--", "sh", "-c", "kill -KILL $$"}, 128 + SIGKILL},
        {{"run", "--", "no-such-program"}, 127},
        {{"run", "--", "/"}, 126},
        {{"run", "no-such-profile", "--", "true"}, 2},
        {{"run", "speakerphone"}, 2},
        {{"help"}, 0},
        {{}, 2},
    };
    for (const auto& testCase : cases) {
        SimProcess sim = runProgram(testCase.arguments);
        sim.endInput();
        EXPECT_EQ(sim.exitStatus(), testCase.status) << testing::PrintToString(testCase.arguments);
    }
}

} // namespace
