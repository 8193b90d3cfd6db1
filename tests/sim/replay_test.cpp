// kelprobe-sim replay with the recording of a meeting.
#include "tests/sim/sim_process.h"

namespace {

class Replay : public KelprobeSim {
protected:
    // The recording with other lines instead of the one that switches the mute lamp on, whose time
    // they can refer to as \\1.
    std::string recordingWith(const std::string& text) const
    {
        return outputOf("sed -E 's/^# output ([0-9.]+) 3 03 05 00 .*/" + text + "/' "
            + KELPROBE_MEETING + " >" + changed_.path() + "changed.hid; echo -n " + changed_.path()
            + "changed.hid");
    }

    // Replays twice as fast, with what a person did at the computer when it was recorded.
    std::string command(const std::string& recording) const
    {
        return "kelprobe-sim 2>&1 replay " + recording
            + " --check --speed 2 --within 2s -- sh -c '"
              "(echo ring; kelprobe-sim expect ring on --within 20s; echo pickup; "
              "kelprobe-sim wait idle --within 20s) 2>&1 | kelprobectl meeting' >&2";
    }

private:
    const test::TempDirectory changed_;
};

TEST_F(Replay, AProgramThatBehavesAsRecordedPasses)
{
    const test::TempDirectory directory;
    const std::string again = directory.path() + "again.hid";
    const std::string recording = KELPROBE_MEETING;
    std::string text = command(recording);
    text.replace(text.find("meeting'"), 7, "meeting --record " + again);
    start(text);
    EXPECT_EQ(lineWith("every recorded report"), "--   every recorded report was sent");
    EXPECT_EQ(exitStatus(), 0);

    // What it did was recorded in turn: the same reports. Two threads write them into a recording,
    // not always in the order in which the device receives them.
    const std::string reports = " | sed -nE 's/^(E:|# output) [0-9.]+ /\\1 /p' | sort";
    EXPECT_EQ(outputOf("cat " + again + reports), outputOf("cat " + recording + reports));
}

TEST_F(Replay, HasTheInterfaceAndTheNameThatRunGivesTheFile)
{
    const test::TempDirectory directory;
    const std::string file = directory.path() + "conference.hid";
    EXPECT_EQ(outputOf("sed '/^N:/d; s/^P: .*/P: 1-1:1.3/' " KELPROBE_MEETING " >" + file), "");
    for (const char* const command : {"run", "replay"}) {
        start(std::string("kelprobe-sim 2>&1 ") + command + ' ' + file + " -- kelprobectl list");
        const std::string device = lineWith("1209:0001");
        EXPECT_NE(device.find("1-1:1.3"), device.npos) << device;
        EXPECT_NE(device.find("conference"), device.npos) << device;
        EXPECT_EQ(exitStatus(), 0);
    }
}

TEST_F(Replay, PrintsTheFirstDifferenceInContext)
{
    const std::string muteOn = "# output \\1 3 03 05 00 -> 3";
    for (const auto& [text, explanation] : {
             // The program sends another report than was recorded.
             std::pair{std::string("# output \\1 3 03 04 00 -> 3"),
                 std::vector<std::string>{"kelprobe-sim: difference at report 8 of 19:",
                     "out      03 00 00     Ring off", "out      03 01 00     Off-Hook on",
                     "in       03 09 00     Hook Switch on, Phone Mute on",
                     "out      03 04 00     Off-Hook off, Mute on", "+ the program sent 03 05 00"}},
             // It does not send a report that the device waits for.
             {muteOn + "\\n" + muteOn,
                 {"kelprobe-sim: difference at report 9 of 20:", "out      03 05 00     Mute on",
                     "+ the program sent nothing for 2 s"}},
             // It sends one more.
             {"# none",
                 {"kelprobe-sim: difference at report 10 of 18:", "+ the program sent 03 05 00"}},
         }) {
        start(command(recordingWith(text)));
        for (const std::string& part : explanation)
            EXPECT_NE(lineWith(part), "end") << part;
        EXPECT_EQ(exitStatus(), 1) << text;
    }
}

TEST_F(Replay, SendsTheDevicesReportsInOrderOnceTheProgramReads)
{
    start("kelprobe-sim replay " + std::string(KELPROBE_MEETING)
        + " --speed 100 -- sh -c 'sleep .05; exec sim-client open r 030900 r 030100 "
          "r 030900 r 030100 r 031100 r 030100 r 030300 r 030100 gone'");
    play({
        {"", "--   opened"},
        {"", "in   03 09 00     recorded: Hook Switch on, Phone Mute on"},
        {"", "in   03 01 00     recorded: Phone Mute off"},
        {"", "in   03 09 00     recorded: Phone Mute on"},
        {"", "in   03 01 00     recorded: Phone Mute off"},
        {"", "in   03 11 00     recorded: Flash on"},
        {"", "in   03 01 00     recorded: Flash off"},
        {"", "in   03 03 00     recorded: Line Busy Tone on"},
        {"", "in   03 01 00     recorded: Line Busy Tone off"},
        {"", "--   every recorded report was sent"},
    });
    give("quit");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Replay, WhoeverEndsTheBenchGetsNoDifference)
{
    const std::string command = "kelprobe-sim 2>&1 replay " + std::string(KELPROBE_MEETING)
        + " --check -- sim-client open w 030000 gone";
    start(command);
    EXPECT_EQ(lineWith("out"), "out  03 00 00     no change");
    kill(pid_, SIGTERM);
    EXPECT_EQ(lineWith("difference"), "end");
    EXPECT_EQ(exitStatus(), 128 + SIGTERM);
    start(command);
    EXPECT_EQ(lineWith("out"), "out  03 00 00     no change");
    give("quit");
    EXPECT_EQ(lineWith("difference"), "end");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Replay, AReportThatTheProgramDoesNotReadIsADifference)
{
    const test::TempDirectory files;
    const std::string recording = files.file("r.hid",
        outputOf("grep '^[RNPI]:' " KELPROBE_MEETING)
            + "E: 000000.000000 3 03 09 00\nE: 000001.500000 3 03 01 00\n");
    start("kelprobe-sim 2>&1 replay " + recording
        + " --check -- sh -c 'sim-client open r 030900; sleep 60'");
    for (const std::string part :
        {"difference at report 2 of 2", "+ the program does not read from the device"})
        EXPECT_NE(lineWith(part), "end") << part;
    EXPECT_EQ(exitStatus(), 1);
}

TEST_F(Replay, RefusesARecordingThatItCannotPlay)
{
    const test::TempDirectory files;
    for (const auto& [text, options, error] : {
             std::tuple{"N: x\n", "", ": the recording has no report descriptor (R: line) of"},
             {"R: 1 c0\n", "--device 2", ": the recording has no device 2; it has 1"},
             {"R: 2 c0\n", "", ":1:"},
             {"R: 1 c0\n", "--within soon", "--within takes a time"},
         }) {
        start("kelprobe-sim 2>&1 replay " + files.file("r.hid", text) + " " + options + " -- true");
        EXPECT_NE(line().find(error), std::string::npos) << error;
        EXPECT_EQ(exitStatus(), 2) << error;
    }
}

} // namespace
