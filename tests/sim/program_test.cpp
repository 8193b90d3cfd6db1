// kelprobe-sim run: its command line, what it prints, and how it ends.
#include "tests/sim/sim_process.h"

#include <pty.h>

namespace fs = std::filesystem;

namespace {

TEST_F(KelprobeSim, UnderstandsOrExplainsItsCommandLine)
{
    for (const auto& [arguments, firstLine, status] :
        {
            std::tuple{"--version", "kelprobe-sim " KELPROBE_VERSION, 0},
            {"list", "speakerphone     1209:0001  speakerphone, all controls in report 3", 0},
            {"help", "Runs programs with simulated USB HID devices, and operates the devices.", 0},
            {"run webcam -h -- true", "Run a program with simulated devices", 0},
            {"help press", "push the button and let it go", 0},
            {"run -- echo -h", "-h", 0},
            {"profile webcam", "{", 0},
            {"", "kelprobe-sim: a command is required", 2},
            {"lst", "kelprobe-sim: unknown command lst; did you mean list?", 2},
            {"--versoin", "kelprobe-sim: unknown option --versoin; did you mean --version?", 2},
            {"list all", "kelprobe-sim: unexpected argument all", 2},
            {"run --", "kelprobe-sim: expected -- and a program", 2},
            {"run webcam true", "kelprobe-sim: expected -- and a program", 2},
            {"run webcm -- p", "kelprobe-sim: unknown profile webcm; did you mean webcam?", 2},
            {"run --hlep -- p", "kelprobe-sim: unknown option --hlep; did you mean --help?", 2},
            {"run --ids 12090001 -- p", "kelprobe-sim: --ids takes two numbers", 2},
            {"run --ids '' -- p", "kelprobe-sim: --ids takes two numbers", 2},
            {"run --name $(printf '\xff') -- p", "kelprobe-sim: --name: expected valid UTF-8 of",
                2},
            {"2: list", "kelprobe-sim: only commands for a running bench take the number of", 2},
            {"list -- p", "kelprobe-sim: only run and replay take a program after --", 2},
            {"run --interface 32 -- p", "kelprobe-sim: --interface: expected a number from 0 to 31",
                2},
            {"replay -- p", "kelprobe-sim: RECORDING is required", 2},
            {"replay no-file -- p", "kelprobe-sim: no-file: No such file or directory", 2},
            {"replay x --speed nan -- p", "kelprobe-sim: --speed: expected a number from", 2},
            {"replay x --speed 0x1p3 -- p", "kelprobe-sim: --speed: expected a number from", 2},
            {"replay x --device 0 -- p", "kelprobe-sim: --device: expected a number from 1", 2},
            {"profile x --device 99999999999999999999", "kelprobe-sim: --device: expected a number",
                2},
            {"press mute", "kelprobe-sim: there is no bench here; run this in", 3},
            {"'2: press mute'", "kelprobe-sim: there is no bench here; run this in", 3},
            {"--socket=/tmp/none 2: devices", "kelprobe-sim: no bench has the socket /tmp/no", 3},
            {"2:devices", "kelprobe-sim: there is no bench here; run this in", 3},
            {"--socket /tmp/none press mute", "kelprobe-sim: no bench has the socket /tmp/none", 3},
        }) {
        start(std::string("env -u KELPROBE_SIM kelprobe-sim 2>&1 ") + arguments);
        EXPECT_EQ(line().substr(0, strlen(firstLine)), firstLine) << arguments;
        EXPECT_EQ(exitStatus(), status) << arguments;
    }
}

TEST_F(KelprobeSim, HelpShowsTheArgumentsOfEachCommand)
{
    const std::string all = outputOf("kelprobe-sim --help");
    for (const auto& [command, usage] : {
             std::pair{"press", "press BUTTON [--hold]"},
             {"expect", "expect LAMP on|off|blink [--within T]"},
             {"fault", "fault NAME [N|off]"},
             {"run", "run [OPTIONS] [FILE|PROFILE]... -- PROGRAM [ARGUMENT...]"},
         }) {
        const std::string help = outputOf(std::string("kelprobe-sim --help ") + command);
        EXPECT_NE(help.find(std::string("\nUsage: kelprobe-sim ") + usage + '\n'), help.npos)
            << help;
        EXPECT_TRUE(command == std::string("run") || all.find(usage) != all.npos) << command;
    }
    EXPECT_EQ(outputOf("for i in '' run replay profile press fault; do "
                       "kelprobe-sim $i --help; done | grep '.\\{101\\}'"),
        "");
}

TEST_F(KelprobeSim, SaysWhyItCannotSimulateDevices)
{
    const auto expectError
        = [this](const std::string& command, const std::string& message, int status = 1) {
              start(command + " 2>&1");
              EXPECT_EQ(line().substr(0, message.size()), message);
              EXPECT_EQ(exitStatus(), status);
          };
    expectError("env KELPROBE_PROFILES=/proc kelprobe-sim list",
        "kelprobe-sim: /proc: expected profiles, files *.json", 2);
    expectError("env TMPDIR=/dev/null kelprobe-sim run -- true",
        "kelprobe-sim: cannot write in TMPDIR: /dev/null");
    const std::string inNamespace = "unshare --map-root-user --mount ";
    const std::string mount = "mount -t tmpfs -o size=4k tmpfs $TMPDIR";
    if (std::system((inNamespace + mount).c_str()) != 0)
        GTEST_SKIP() << "mounting is not permitted";
    expectError(inNamespace + "sh -c '" + mount + " && kelprobe-sim run -- true'",
        "kelprobe-sim: no room in TMPDIR: ");
}

TEST_F(KelprobeSim, PrintsWhatDevicesSendAndReceive)
{
    start("kelprobe-sim run webcam speakerphone -- sim-client open w 030000 w 030800 r 030100 "
          "w 030000 w 030100 r 030900 r 030100 w 030500 gone open w 030800");
    play({
        {"", "2:  --   opened"},
        {"", "2:  out  03 00 00     no change"},
        {"", "2:  out  03 08 00     ring on"},
        {"2: hook", "2:  in   03 01 00     hook off"},
        {"", "2:  out  03 00 00     ring off"},
        {"", "2:  out  03 01 00     off-hook on"},
        {"2: mute", "2:  in   03 09 00     mute pressed"},
        {"", "2:  in   03 01 00     mute released"},
        {"", "2:  out  03 05 00     mute on"},
        {"2: replug", "2:  --   closed"},
        {"", "2:  --   unplugged"},
        {"", "2:  --   hook on"}, // as the off-hook LED is off
        {"", "2:  --   plugged in"},
        {"", "2:  --   opened"},
        {"", "2:  out  03 08 00     ring on"},
        {"", "2:  --   closed"},
    });
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(KelprobeSim, FaultsReachTheProgram)
{
    for (const auto& [fault, steps, printed] : {
             std::tuple{"claim", "fail", "--   claim refused"},
             {"detach", "fail", "--   detach refused"},
             {"open", "fail", "--   open refused"},
             {"write 1", "x 030800 w 030800", "--   write refused  03 08 00"},
         }) {
        start(std::string("kelprobe-sim run -- sim-client open w 030000 r 01 ") + steps);
        const std::string name(fault, strcspn(fault, " "));
        play({
            {"", "--   opened"},
            {"", "out  03 00 00     no change"},
            {"fault detach", "--   fault detach on"},
            {"fault none", "--   fault detach off"},
            {std::string("fault ") + fault, "--   fault " + name + " on"},
            {"raw 01", "in   01           raw: 1 byte long instead of 2"},
        });
        EXPECT_EQ(lineWith("refused"), printed);
        EXPECT_EQ(exitStatus(), 0) << fault;
    }
}

TEST_F(KelprobeSim, PrintsFeatureReports)
{
    start("kelprobe-sim run -- kelprobectl send --feature 0401");
    EXPECT_EQ(lineWith("feature").substr(0, 32), "out  04 01        feature report");
    EXPECT_EQ(exitStatus(), 0);
}

// The program inherits neither signal settings nor input, and sees a bus of this user only.
TEST_F(KelprobeSim, EndsAsTheProgramDoes)
{
    for (const auto& [program, status] : {
             std::pair{"sh -c 'exit 37'", 37},
             {"sh -c 'kill -KILL $$'", 128 + SIGKILL},
             {"no-such-program", 127},
             {"/", 126},
             // After a killed client, opening does not fail.
             {"sh -c 'sim-client open kill; kelprobe-sim wait closed; sim-client fail'", 1},
             {R"(sh -c 'test $(grep -cE "^Sig(Blk|Ign):.*0{7}$" /proc/self/status) = 2')", 0},
             {"sh -c 'test $(readlink /proc/self/fd/0) = /dev/null'", 0},
             {"sh -c 'test $(readlink /proc/$$/fd/1) = $(readlink /proc/$$/fd/2)'", 0},
             {R"(sh -c 'test $(cut -d" " -f5 /proc/$$/stat) = $$')", 0}, // leads its group
             {"sh -c 'test ${LD_PRELOAD%%:/*} = libdl.so.2:libm.so.6'", 0},
             {"sh -c 'test $(stat -c %a $UMOCKDEV_DIR) = 700'", 0},
             {"sh -c 'test $(stat -c %a $(dirname $KELPROBE_SIM)) = 700'", 0},
             {"sh -c 'test $(stat -Lc %a $UMOCKDEV_DIR/dev/bus/usb/001/*) = 600'", 0},
         })
        EXPECT_EQ(run(std::string("env --ignore-signal=CHLD,USR1 --block-signal=USR2 "
                                  "LD_PRELOAD=libdl.so.2:libm.so.6 kelprobe-sim run -- ")
                      + program),
            status)
            << program;
}

TEST_F(KelprobeSim, EndsTheProgramWhenASignalEndsIt)
{
    for (const auto& [program, signal] : {
             std::pair{"sim-client open w 030000 gone", SIGHUP},
             {"sim-client open w 030000 gone", SIGINT},
             {"sim-client open w 030000 gone", SIGQUIT},
             {"sh -c 'sim-client open w 030000; sleep 1000'", SIGTERM},
             {R"(sh -c 'trap "" TERM; sim-client open w 030000; sleep 1000')", SIGTERM},
         }) {
        start(std::string("kelprobe-sim run -- ") + program);
        EXPECT_EQ(lineWith("03 00 00"), "out  03 00 00     no change");
        kill(pid_, signal);
        EXPECT_EQ(exitStatus(), 128 + signal) << program;
    }
}

TEST_F(KelprobeSim, InputDoesNotDelayTheEnd)
{
    EXPECT_EQ(run("bash -c 'yes press mute | timeout 10 kelprobe-sim run -- true >/dev/null'"), 0);
}

TEST_F(KelprobeSim, ReportsThatItsOutputCannotBeWritten)
{
    for (const auto& [command, status] : {
             std::pair{"kelprobe-sim run -- sim-client open >/dev/full", 1},
             {"kelprobe-sim run -- sh -c 'sim-client open; exit 5' >/dev/full", 5},
             {"kelprobe-sim run -- sh -c 'kelprobe-sim lamps 2>&3 >/dev/full'", 1},
             {"kelprobe-sim list >/dev/full", 1},
         }) {
        start(std::string(command) + " 2>&3");
        EXPECT_EQ(lineWith("standard"), "kelprobe-sim: standard output: No space left on device");
        EXPECT_EQ(exitStatus(), status) << command;
    }
    EXPECT_EQ(run("bash -o pipefail -c 'kelprobe-sim run -- sim-client open | true'"), 0);
}

// Bash, which has started kelprobe-sim, does not know of the program that this runs.
TEST_F(KelprobeSim, AnInteractiveProgramCanBeStoppedAndContinued)
{
    int terminal = -1;
    const pid_t shell = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (shell == 0) {
        setenv("PATH", (std::string(KELPROBE_SIM_PATH ":") + getenv("PATH")).c_str(), 1);
        setenv("PS1", "> ", 1);
        execlp("bash", "bash", "--norc", "--noediting", "-i", nullptr);
        _exit(127);
    }
    std::string shown;
    const auto waitFor = [&](const std::string& text) {
        char buffer[4096];
        for (pollfd input{terminal, POLLIN, 0};
             shown.find(text) == shown.npos && poll(&input, 1, 20'000) > 0;) {
            const ssize_t size = read(terminal, buffer, sizeof buffer);
            if (size <= 0)
                break;
            shown.append(buffer, static_cast<size_t>(size));
        }
        EXPECT_NE(shown.find(text), shown.npos) << text << " is not in: " << shown;
        shown.clear();
    };
    for (const auto& [typed, expected] : {
             std::pair{
                 "kelprobe-sim run -i -- sh -c 'echo started; exec sed -u s/a/A/'\n", "started\r"},
             {"\x1a", "Stopped"},
             {"jobs\n", "Stopped"},
             {"fg\n", "kelprobe-sim run"},
             {"can\n", "cAn"},
             {"\x04", "> "},
             {"exit 3\n", "exit"},
         }) {
        EXPECT_GT(write(terminal, typed, strlen(typed)), 0);
        waitFor(expected);
        if (HasFailure())
            break;
    }
    int status = 0;
    if (HasFailure())
        kill(shell, SIGHUP);
    waitpid(shell, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 3);
    close(terminal);
}

// As in the documentation, and in CI.
TEST_F(KelprobeSim, TheExampleOfAMeetingPasses)
{
    EXPECT_EQ(run("kelprobe-sim run speakerphone -- sh " KELPROBE_EXAMPLES "/meeting.sh"), 0);
}

TEST_F(KelprobeSim, TheExampleOfAMeetingLeavesNothingWhenItIsStopped)
{
    start("kelprobe-sim run speakerphone -- sh " KELPROBE_EXAMPLES "/meeting.sh");
    EXPECT_NE(lineWith("ring on"), "end");
    kill(pid_, SIGTERM);
    EXPECT_EQ(exitStatus(), 128 + SIGTERM);
}

TEST_F(KelprobeSim, TheBenchPassesTheConformanceRun)
{
    start("kelprobe-sim 2>&1 run -- kelprobectl check --silence 50 "
          "--press-command 'kelprobe-sim press' --replug-command kelprobe-sim");
    EXPECT_NE(lineWith("24 passed, 0 failed, 5 skipped"), "end");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(KelprobeSim, FindsItsLibraryUnderAPathThatLdPreloadCannotHold)
{
    const test::TempDirectory directory;
    const std::string copy = directory.path() + "a b:c";
    fs::create_directory(copy);
    fs::copy(KELPROBE_SIM, copy);
    fs::copy(KELPROBE_SIM_PRELOAD, copy);
    const std::string command
        = "'" + copy + "/kelprobe-sim' run -- grep -q kelprobe-sim-preload /proc/self/maps";
    EXPECT_EQ(run(command), 0);
    setenv("TMPDIR", copy.c_str(), 1);
    start(command + " 2>&1"); // a link below TMPDIR would be no better
    const std::string error = "kelprobe-sim: LD_PRELOAD cannot hold a path with a blank";
    EXPECT_EQ(line().substr(0, error.size()), error);
    EXPECT_EQ(exitStatus(), 1);
}

} // namespace
