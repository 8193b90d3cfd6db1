// kelprobe-sim as a process, its input and output.
#include "tests/support/temp_directory.h"

#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <vector>

namespace fs = std::filesystem;

namespace {

class KelprobeSim : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(mkfifo(fifo_.c_str(), 0600), 0);
        setenv("TMPDIR", directory_.path().c_str(), 1);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT}) // a shell may have started us otherwise
            std::signal(signal, SIG_DFL);
    }
    void TearDown() override
    {
        unsetenv("TMPDIR");
        fs::remove(fifo_);
        EXPECT_TRUE(fs::is_empty(directory_.path())) << "a bus was left behind";
    }

    // Starts a shell command, which finds kelprobe-sim and sim-client. The one before must have
    // ended. As every process inherits descriptor 3, the output ends when the last process does.
    void start(const std::string& command)
    {
        const std::string script = "PATH=" KELPROBE_SIM_PATH ":$PATH; exec <" + fifo_
            + " 3>&1; echo $$; exec " + command;
        output_ = popen(script.c_str(), "r");
        input_ = fopen(fifo_.c_str(), "w");
        pid_ = std::stoi(line());
    }

    // The next line of standard output; "end" after the last.
    std::string line()
    {
        char text[500];
        if (!fgets(text, sizeof text, output_))
            return "end";
        return std::string(text, strcspn(text, "\n"));
    }

    // Gives each command, unless it is empty, and compares the next line of standard output.
    void play(const std::vector<std::pair<std::string, std::string>>& steps)
    {
        for (const auto& [command, expected] : steps) {
            if (!command.empty())
                fprintf(input_, "%s\n", command.c_str());
            fflush(input_);
            EXPECT_EQ(line(), expected) << command;
        }
    }

    // Waits until it ends by itself.
    int exitStatus()
    {
        while (line() != "end") { }
        const int status = pclose(output_);
        fclose(input_);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    // Ends the input at once, which does not end the program.
    int run(const std::string& command)
    {
        start(command);
        input_ = freopen("/dev/null", "w", input_);
        return exitStatus();
    }

    pid_t pid_ = -1;

private:
    const test::TempDirectory directory_;
    const std::string fifo_ = directory_.path() + "in";
    FILE* input_ = nullptr;
    FILE* output_ = nullptr;
};

#define USAGE "usage: kelprobe-sim run [PROFILE...] -- PROGRAM [ARGUMENT...]"

TEST_F(KelprobeSim, UnderstandsOrExplainsItsCommandLine)
{
    for (const auto& [arguments, firstLine, status] : {
             std::tuple{"--version", "kelprobe-sim " KELPROBE_VERSION, 0},
             {"list", "speakerphone     1209:0001  speakerphone, all controls in report 3", 0},
             {"help", USAGE, 0},
             {"run webcam -h -- true", USAGE, 0},
             {"run -- echo -h", "-h", 0},
             {"", "kelprobe-sim: expected a command", 2},
             {"lst", "kelprobe-sim: unknown command lst; did you mean list?", 2},
             {"--versoin", "kelprobe-sim: unknown option --versoin; did you mean --version?", 2},
             {"list all", "kelprobe-sim: list: unexpected argument all", 2},
             {"run --", "kelprobe-sim: run: expected -- and a program", 2},
             {"run webcm -- p", "kelprobe-sim: unknown profile webcm; did you mean webcam?", 2},
             {"run toaster -- p", "kelprobe-sim: unknown profile toaster", 2},
             {"run --hlep -- p", "kelprobe-sim: unknown option --hlep; did you mean --help?", 2},
         }) {
        start(std::string("kelprobe-sim 2>&1 ") + arguments);
        EXPECT_EQ(line(), firstLine);
        EXPECT_EQ(exitStatus(), status) << arguments;
    }
}

TEST_F(KelprobeSim, SaysWhyItCannotSimulateDevices)
{
    const auto expectError = [this](const std::string& command, const std::string& message) {
        start(command + " 2>&1");
        EXPECT_EQ(line().substr(0, message.size()), message);
        EXPECT_EQ(exitStatus(), 1);
    };
    expectError("env KELPROBE_PROFILES=/proc kelprobe-sim list",
        "kelprobe-sim: /proc: expected profiles, files *.json");
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
        {"", "2: no change           03 00 00"},
        {"", "2: ring LED on         03 08 00"},
        {"2: hook", "2: hook switch off     03 01 00"},
        {"", "2: ring LED off        03 00 00"},
        {"", "2: off-hook LED on     03 01 00"},
        {"2: mute", "2: mute pressed        03 09 00"},
        {"", "2: mute released       03 01 00"},
        {"", "2: mute LED on         03 05 00"},
        {"2: replug", "2: plugged in"},
        {"", "2: off-hook LED off, mute LED off, ring LED on  03 08 00"},
    });
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(KelprobeSim, AnswersEveryCommand)
{
    start("kelprobe-sim run speakerphone webcam -- sleep 60");
    play({
        {"raw 01 02", "1: raw report          01 02  (no program listens)"},
        {" 1 : hook off ", "1: hook switch off     03 01 00  (no program listens)"},
        {"2:mute\r", "2: mute pressed        08 01  (no program listens)"},
        {"", "2: mute released       08 00  (no program listens)"},
        {"2: flash", "2: the device has no such button"},
        {"3: mute", "1: no such device"},
        {"0: mute", "1: no such device"},
        {"raw 0", "1: not understood: raw 0 (try help)"},
        {std::string(300'000, 'x'), "1: not understood: line too long"},
        {"hook up", "1: not understood: hook up (try help)"},
        {"fault claim x", "1: not understood: fault claim x (try help)"},
        {"fault short", "1: not understood: fault short (try help)"},
        {"fault flood 65536", "1: fault flood 65536"},
        {"fault flood 65537", "1: not understood: fault flood 65537 (try help)"},
        {"unplug", "1: unplugged"},
        {"help", R"(Commands, a line each; "2: mute" is for the second device:)"},
    });
    kill(pid_, SIGTERM);
    EXPECT_EQ(exitStatus(), 128 + SIGTERM);
}

TEST_F(KelprobeSim, FaultsReachTheProgram)
{
    for (const auto& [fault, steps, printed] : {
             std::tuple{"claim", "fail", "claim refused"},
             {"detach", "fail", "detach refused"},
             {"open", "fail", "end"}, // the client is refused by the system, not by the device
             {"write 1", "x 030800 w 030800", "write refused       03 08 00"},
         }) {
        start(std::string("kelprobe-sim run -- sim-client open w 030000 r 01 ") + steps);
        play({
            {"", "no change           03 00 00"},
            {"fault detach", "fault detach"},
            {"fault none", "fault none"},
            {std::string("fault ") + fault, std::string("fault ") + fault},
            {"raw 01", "raw report          01"},
            {"", printed},
        });
        EXPECT_EQ(exitStatus(), 0) << fault;
    }
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
             {"sh -c 'sim-client open kill; sleep .1; sim-client fail'", 1},
             {R"(sh -c 'test $(grep -cE "^Sig(Blk|Ign):.*0{7}$" /proc/self/status) = 2')", 0},
             {"sh -c 'test $(readlink /proc/self/fd/0) = /dev/null'", 0},
             {"sh -c 'test $(readlink /proc/$$/fd/1) = $(readlink /proc/$$/fd/2)'", 0},
             {R"(sh -c 'test $(cut -d" " -f5 /proc/$$/stat) = $$')", 0}, // leads its group
             {"sh -c 'test ${LD_PRELOAD%%:/*} = libdl.so.2:libm.so.6'", 0},
             {"sh -c 'test $(stat -c %a $UMOCKDEV_DIR) = 700'", 0},
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
        EXPECT_EQ(line(), "no change           03 00 00");
        kill(pid_, signal);
        EXPECT_EQ(exitStatus(), 128 + signal) << program;
    }
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
    EXPECT_TRUE(line().starts_with("kelprobe-sim: LD_PRELOAD cannot hold a path with a blank"));
    EXPECT_EQ(exitStatus(), 1);
}

} // namespace
