// kelprobe-sim as a process, its input and output.
#include "tests/support/temp_directory.h"

#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdio>
#include <cstring>

namespace fs = std::filesystem;

namespace {

class KelprobeSim : public testing::Test {
protected:
    void SetUp() override
    {
        directory_ = "/tmp/simXXXXXX"; // short: sockets have their places in it
        ASSERT_NE(mkdtemp(directory_.data()), nullptr);
        ASSERT_EQ(mkfifo(fifo().c_str(), 0600), 0);
        setenv("TMPDIR", directory_.c_str(), 1);
    }
    void TearDown() override
    {
        fs::remove(fifo());
        EXPECT_TRUE(fs::is_empty(directory_)) << "a bus was left behind";
        fs::remove_all(directory_);
    }

    // Starts it with arguments as for a shell. The one before must have ended.
    void start(const std::string& arguments, const std::string& program = KELPROBE_SIM)
    {
        const std::string command
            = "exec <" + fifo() + "; echo $$; exec " + program + ' ' + arguments;
        output_ = popen(command.c_str(), "r");
        input_ = fopen(fifo().c_str(), "w");
        pid_ = std::stoi(line());
    }
    // The client with the speakerphone, unless there are other profiles.
    void startClient(const std::string& steps, const std::string& profiles = "")
    {
        start("run " + profiles + " -- " KELPROBE_SIM_CLIENT " " + steps);
    }

    void command(const std::string& text)
    {
        fprintf(input_, "%s\n", text.c_str());
        fflush(input_);
    }
    void endInput() { input_ = freopen("/dev/null", "w", input_); }

    // The next line of standard output; "end" after the last.
    std::string line()
    {
        char text[500];
        if (!fgets(text, sizeof text, output_))
            return "end";
        return std::string(text, strcspn(text, "\n"));
    }

    // Waits until it ends by itself.
    int exitStatus()
    {
        while (line() != "end") { }
        const int status = pclose(output_);
        fclose(input_);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string fifo() const { return directory_ + "/in"; }

    pid_t pid_ = -1;

private:
    std::string directory_;
    FILE* input_ = nullptr;
    FILE* output_ = nullptr;
};

TEST_F(KelprobeSim, PrintsLedsAndPresses)
{
    startClient(
        "open w 030000 w 030800 r 030100 w 030000 w 030100 r 030900 r 030100 w 030500 gone");
    EXPECT_EQ(line(), "no change           03 00 00");
    EXPECT_EQ(line(), "ring LED on         03 08 00");
    command("hook");
    EXPECT_EQ(line(), "hook switch off     03 01 00");
    EXPECT_EQ(line(), "ring LED off        03 00 00");
    EXPECT_EQ(line(), "off-hook LED on     03 01 00");
    command("mute");
    EXPECT_EQ(line(), "mute pressed        03 09 00");
    EXPECT_EQ(line(), "mute released       03 01 00");
    EXPECT_EQ(line(), "mute LED on         03 05 00");
    endInput();
    kill(pid_, SIGTERM);
    EXPECT_EQ(exitStatus(), 128 + SIGTERM);
}

TEST_F(KelprobeSim, AnswersEveryCommand)
{
    start("run speakerphone webcam -- sleep 60");
    for (const auto& [words, answer] : {
             std::pair{
                 std::string("raw 01 02"), "1: raw report          01 02  (no program listens)"},
             {" 1 : hook off ", "1: hook switch off     03 01 00  (no program listens)"},
             {"2:mute\r", "2: mute pressed        08 01  (no program listens)"},
             {"", "2: mute released       08 00  (no program listens)"}, // of the one before
             {"2: flash", "2: the device has no such button"},
             {"3: mute", "1: no such device"},
             {"0: mute", "1: no such device"},
             {"x: mute", "1: no such device"},
             {"raw 0", "1: not understood: raw 0 (try help)"},
             {std::string(300'000, 'x'), "1: not understood: line too long"},
             {"dance", "1: not understood: dance (try help)"},
             {"hook up", "1: not understood: hook up (try help)"},
             {"fault claim x", "1: not understood: fault claim x (try help)"},
             {"fault short", "1: not understood: fault short (try help)"},
             {"fault write 3", "1: fault write 3"},
             {"fault flood 65536", "1: fault flood 65536"},
             {"fault flood 65537", "1: not understood: fault flood 65537 (try help)"},
             {"fault none", "1: fault none"},
             {"unplug", "1: unplugged"},
             {"replug", "1: plugged in"},
             {"help", R"(Commands, a line each; "2: mute" is for the second device:)"},
         }) {
        command(words);
        EXPECT_EQ(line(), answer) << words;
    }
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
        startClient(std::string("open w 030000 r 01 ") + steps);
        EXPECT_EQ(line(), "no change           03 00 00");
        command(std::string("fault ") + fault);
        command("raw 01");
        EXPECT_EQ(line(), std::string("fault ") + fault);
        EXPECT_EQ(line(), "raw report          01");
        EXPECT_EQ(line(), printed);
        EXPECT_EQ(exitStatus(), 0) << fault;
    }
}

TEST_F(KelprobeSim, ADeviceComesBack)
{
    startClient("open w 030000 gone open w 030800", "webcam speakerphone");
    EXPECT_EQ(line(), "2: no change           03 00 00");
    command("2: replug");
    EXPECT_EQ(line(), "2: plugged in");
    EXPECT_EQ(line(), "2: ring LED on         03 08 00");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(KelprobeSim, AKilledProgramLeavesTheDeviceUsable)
{
    start(
        "run -- sh -c '" KELPROBE_SIM_CLIENT " open kill; " KELPROBE_SIM_CLIENT " open w 030800'");
    endInput(); // which does not end the program
    EXPECT_EQ(line(), "ring LED on         03 08 00");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(KelprobeSim, EndsAsTheProgramDoes)
{
    for (const auto& [arguments, status] : {
             std::pair{"run -- sh -c 'exit 37'", 37},
             {"run -- sh -c 'kill -KILL $$'", 128 + SIGKILL},
             {"run -- no-such-program", 127},
             {"run -- /", 126},
             {"run no-such-profile -- true", 2},
             {"run speakerphone", 2},
             {"lst", 2},
         }) {
        start(arguments);
        EXPECT_EQ(exitStatus(), status) << arguments;
    }
}

TEST_F(KelprobeSim, EndsTheProgramWhenASignalEndsIt)
{
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        startClient("open w 030000 gone");
        EXPECT_EQ(line(), "no change           03 00 00");
        kill(pid_, signal);
        EXPECT_EQ(exitStatus(), 128 + signal);
    }
}

TEST_F(KelprobeSim, FindsItsLibraryUnderAPathThatLdPreloadCannotHold)
{
    const test::TempDirectory directory;
    const fs::path copy = directory.path() + "a b:c";
    fs::create_directory(copy);
    for (const fs::path file : {KELPROBE_SIM, KELPROBE_SIM_PRELOAD})
        fs::copy(file, copy / file.filename());
    const std::string program = "'" + (copy / "kelprobe-sim").string() + "'";
    const std::string arguments = "run -- grep -q kelprobe-sim-preload /proc/self/maps";
    start(arguments, program);
    EXPECT_EQ(exitStatus(), 0);
    setenv("TMPDIR", copy.c_str(), 1);
    start(arguments, program);
    EXPECT_EQ(exitStatus(), 1) << "a link below TMPDIR would be no better";
}

TEST_F(KelprobeSim, SaysWhatItIsOnStandardOutput)
{
    for (const auto& [arguments, first] : {
             std::pair{"--version", "kelprobe-sim " KELPROBE_VERSION},
             {"run --help", "usage: kelprobe-sim run [PROFILE...] -- PROGRAM [ARGUMENT...]"},
             {"list", "speakerphone     1209:0001  speakerphone, all controls in report 3"},
         }) {
        start(arguments);
        EXPECT_EQ(line(), first);
        EXPECT_EQ(exitStatus(), 0);
    }
}

TEST_F(KelprobeSim, ABrokenProfileIsAnError)
{
    const test::TempDirectory directory;
    directory.file("speakerphone.hex", "05 0");
    start("list", "env KELPROBE_PROFILES=" + directory.path() + " " KELPROBE_SIM);
    EXPECT_EQ(line(), "end");
    EXPECT_EQ(exitStatus(), 1);
}

TEST_F(KelprobeSim, KeepsOtherUsersFromTheBus)
{
    start(R"(run -- sh -c 'test $(stat -c %a $UMOCKDEV_DIR) = 700 && )"
          R"(test $(stat -Lc %a $UMOCKDEV_DIR/dev/bus/usb/001/*) = 600')");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(KelprobeSim, SaysThatTmpdirIsNoUse)
{
    const test::TempDirectory directory;
    const std::string file = directory.file("file", "");
    fs::permissions(file, fs::perms::all);
    setenv("TMPDIR", file.c_str(), 1);
    start("run -- true");
    EXPECT_EQ(exitStatus(), 1) << "it is a file";

    setenv("TMPDIR", directory.path().c_str(), 1);
    const std::string inNamespace = "unshare --map-root-user --mount ";
    const std::string mount = "mount -t tmpfs -o size=4k tmpfs " + directory.path();
    if (std::system((inNamespace + mount).c_str()) != 0)
        GTEST_SKIP() << "mounting is not permitted";
    start("run -- true", inNamespace + "sh -c '" + mount + R"( && "$@"' sh )" + KELPROBE_SIM);
    EXPECT_EQ(exitStatus(), 1) << "there is no room in it";
}

TEST_F(KelprobeSim, KnowsTheStatusOfTheProgramWhereSigchldIsIgnored)
{
    start("run -- sh -c 'exit 37'", "env --ignore-signal=CHLD " KELPROBE_SIM);
    EXPECT_EQ(exitStatus(), 37);
}

} // namespace
