// kelprobectl trace as a process.
#include "report/format/recording.h"
#include "tests/ctl/ctl_bus_test.h"

#include <json/json.h>

#include <fcntl.h>
#include <pty.h>
#include <sstream>

namespace {

constexpr const char* kOpened = "#1  open         1209:0001 1-1:1.0\n";

class Trace : public CtlBusTest {
protected:
    // Runs the client with these steps. Returns its exit status.
    int traceClient(const std::string& steps, const std::string& options = "")
    {
        return run("trace " + options + " -- " + kClient + steps);
    }

    // The trace on standard error without the times and the numbers of processes.
    std::string trace() const
    {
        constexpr size_t kTimeWidth = 11;
        std::string text;
        std::istringstream lines(err_);
        for (std::string line; std::getline(lines, line);) {
            line.erase(0, kTimeWidth);
            if (line.starts_with('['))
                line.replace(1, line.find(' ') - 1, "PID");
            text += line + '\n';
        }
        return text;
    }

    static constexpr const char* kClient = SIM_CLIENT " ";
    const test::TempDirectory files_;
};

TEST_F(Trace, PrintsEachCallWithItsMeaningAndTheReasonOfAFailure)
{
    plug().faults().failWrite.arm(1);
    EXPECT_EQ(traceClient("open x 030800 w 030800 w 030900 w 09"), 0);
    EXPECT_EQ(trace(),
        std::string(kOpened) +
            R"(#1  output       03 08 00       Ring on*  failed: the device refused it
#1  output       03 08 00       Ring on*
#1  output       03 09 00       Off-Hook on*, Ring on
#1  output       09             unknown output report 9*
#1  close
)");
}

TEST_F(Trace, PrintsWhatTheDeviceSendsUntilItHasGone)
{
    auto& device = plug();
    device.setOutputCallback([&device](const Bytes&) { EXPECT_TRUE(device.inject({3, 1, 0})); });
    CtlProcess process(
        std::string("trace -- ") + kClient + "open w 030000 r 030100 gone", errorFile());
    ASSERT_TRUE(
        eventually([&] { return test::content(errorFile()).find("input") != std::string::npos; }));
    device.unplug();
    EXPECT_EQ(process.end(), 0);
    err_ = test::content(errorFile());
    EXPECT_EQ(trace(), std::string(kOpened) + R"(#1  output       03 00 00       nothing on
#1  input        03 01 00       Hook Switch on*
#1  input  failed: the device has gone
#1  input  failed: the device has gone
#1  close
)");
}

TEST_F(Trace, LeavesProgramsThatLoadHidapiThemselvesAlone)
{
    const std::string used
        = std::string(kOpened) + "#1  output       03 01 00       Off-Hook on*\n";
    struct {
        const char* use;
        std::string trace;
    } const cases[] = {
        {"private", ": " LOADING_CLIENT " made no hidapi calls that could be seen; "},
        {"twice",
            used + "#1  close\n" + kOpened
                + "#1  output       03 01 00       Off-Hook on*\n#1  close\n"},
        {"signal", used + "#1  input        03 01 00       Hook Switch on*\n#1  close\n"},
    };
    auto& device = plug();
    device.setOutputCallback([&device](const Bytes&) { EXPECT_TRUE(device.inject({3, 1, 0})); });
    for (const auto& [use, expected] : cases) {
        EXPECT_EQ(run(std::string("trace -- " LOADING_CLIENT " ") + use), 0) << use;
        EXPECT_TRUE(trace().starts_with(expected)) << trace();
    }
}

TEST_F(Trace, SaysWhyADeviceCannotBeOpened)
{
    EXPECT_EQ(traceClient("fail"), 0);
    EXPECT_EQ(trace(), "#?  open         1209:0001  failed: no such device\n");
    auto& device = plug();
    device.faults().refuseClaim.arm(1);
    EXPECT_EQ(traceClient("fail"), 0);
    EXPECT_EQ(trace(),
        "#?  open         1209:0001 1-1:1.0  failed: in use by another program or driver\n");
    device.setOpenable(false);
    EXPECT_EQ(traceClient("fail"), 0);
    EXPECT_EQ(trace(), "#?  open         1209:0001 1-1:1.0  failed: no permission\n");
    device.setOpenable(true);
    device.faults().stallReportDescriptor.arm();
    EXPECT_EQ(traceClient("open w 030800"), 0);
    EXPECT_EQ(trace(),
        std::string(kOpened)
            + "#1  descriptor   cannot be read, so reports have no meaning\n"
              "#1  output       03 08 00\n#1  close\n");
}

TEST_F(Trace, EndsAsTheProgramDoes)
{
    struct {
        const char* program;
        int status;
        const char* message;
    } const cases[] = {
        {"true", 0, "kelprobectl: true made no hidapi calls that could be seen; "},
        {"sh -c 'exit 7'", 7, "kelprobectl: sh made no hidapi calls that could be seen; "},
        {"sh -c 'kill -9 $$'", 128 + SIGKILL,
            "kelprobectl: sh made no hidapi calls that could be seen; "},
        {"no-such-program", 127, "kelprobectl: no-such-program: No such file or directory\n"},
        {"/dev/null", 126, "kelprobectl: /dev/null: Permission denied\n"},
    };
    for (const auto& [program, status, message] : cases) {
        EXPECT_EQ(run(std::string("trace -- ") + program), status) << program;
        EXPECT_TRUE(err_.starts_with(message)) << err_;
        EXPECT_EQ(std::count(err_.begin(), err_.end(), '\n'), 1) << err_;
    }
    EXPECT_EQ(run("trace"), 2);
    const std::string file = files_.path() + "file";
    EXPECT_EQ(run("trace --output " + file + " --record " + files_.path() + "./file -- true"), 2);
    EXPECT_EQ(err_, "kelprobectl: --output and --record need different files\n");
    EXPECT_EQ(run("trace --output /dev/null --record /dev/null -- true"), 0);
    EXPECT_EQ(run("trace --output /no/file -- touch " + files_.path() + "started"), 3);
    EXPECT_FALSE(std::filesystem::exists(files_.path() + "started"));
}

TEST_F(Trace, LeavesStandardStreamsAndSignalActionsAlone)
{
    const std::string in = files_.file("in", "the input\n");
    EXPECT_EQ(run("trace --output /dev/null -- sh -c 'cat; echo error >&2' <" + in), 0);
    EXPECT_EQ(out_, "the input\n");
    EXPECT_TRUE(err_.starts_with("error\nkelprobectl: ")) << err_;
    // Closed streams are closed for the program, too, and signals have their actions: those up to
    // 32, of which each has a bit in the last 8 digits. 200 is the trace's own descriptor.
    const std::string plain = files_.path() + "plain";
    const std::string traced = files_.path() + "traced";
    const std::string script
        = "sh -c '{ ls /proc/self/fd | grep -v 200; grep -E \"Sig(Blk|Ign|Cgt)\" "
          "/proc/self/status | grep -oE \".{8}$\"; } >\"$0\"' ";
    EXPECT_EQ(system(("exec 3>&- <&- >&- 2>/dev/null; " + script + plain).c_str()), 0);
    EXPECT_EQ(run("trace -- " + script + traced + " 3>&- <&- >&-"), 0);
    EXPECT_EQ(test::content(traced), test::content(plain));
    // A program that closes its output ends it for the reader.
    EXPECT_EQ(run("trace -- sh -c 'for i in $(seq 1000); do"
                  " [ \"$(readlink /proc/$PPID/fd/1)\" = /dev/null ] && exit; done; exit 1'"),
        0);
}

TEST_F(Trace, FollowsProcessesThatTheProgramStarts)
{
    plug();
    EXPECT_EQ(traceClient("open fork x '' reuse x ''"), 0);
    EXPECT_EQ(trace(),
        std::string(kOpened)
            + "[PID sim-client]  #1  output  failed: hidapi gives no reason\n"
              "[PID sim-client]  #1  output  failed: hidapi gives no reason\n");
    EXPECT_EQ(run(std::string("trace -- sh -c '") + kClient + "open w 030800; true'"), 0);
    EXPECT_EQ(trace(),
        "[PID sim-client]  #1  open         1209:0001 1-1:1.0\n"
        "[PID sim-client]  #1  output       03 08 00       Ring on*\n"
        "[PID sim-client]  #1  close\n");
}

TEST_F(Trace, WritesToNoDescriptorThatTheProgramUses)
{
    plug();
    EXPECT_EQ(traceClient("open w 030800 reuse w 030900 w 030000"), 0);
    EXPECT_EQ(std::count(err_.begin(), err_.end(), '\n'), 5) << err_;
}

TEST_F(Trace, LosesNothingWhileItCannotKeepUp)
{
    auto& device = plug();
    CtlProcess process(std::string("trace -- ") + kClient + "open flood 600", errorFile());
    ASSERT_TRUE(device.waitForOutputs(1));
    process.kill(SIGSTOP);
    (void)device.waitForOutputs(600, std::chrono::seconds(1));
    process.kill(SIGCONT);
    EXPECT_EQ(process.end(), 0);
    const std::string lines = test::content(errorFile());
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 602);
}

TEST_F(Trace, LosesNothingIfItsReaderIsSlow)
{
    auto& device = plug();
    const std::string pipe = files_.path() + "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GT(fcntl(reader, F_SETPIPE_SZ, 4096), 0);
    CtlProcess process(std::string("trace -- ") + kClient + "open flood 200", pipe);
    ASSERT_TRUE(device.waitForOutputs(200));
    EXPECT_TRUE(eventually([&] { return device.driverBound(); })) << "the program ends";
    ASSERT_EQ(fcntl(reader, F_SETFL, 0), 0);
    char bytes[4096];
    std::string lines(bytes, static_cast<size_t>(read(reader, bytes, sizeof bytes)));
    (void)device.waitForOutputs(201, std::chrono::milliseconds(1200)); // nobody reads
    for (ssize_t size = 0; (size = read(reader, bytes, sizeof bytes)) > 0;)
        lines.append(bytes, static_cast<size_t>(size));
    close(reader);
    EXPECT_EQ(process.end(), 0);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 202);
}

TEST_F(Trace, CanBeReachedFromAnyDirectory)
{
    plug();
    const char* const variable = "XDG_RUNTIME_DIR";
    const char* const value = getenv(variable);
    const std::string earlier = value ? value : "";
    const auto directory = std::filesystem::current_path();
    setenv(variable, ".", 1);
    std::filesystem::current_path(files_.path());
    EXPECT_EQ(run(std::string("trace -- sh -c 'cd /; exec ") + kClient + "open'"), 0);
    EXPECT_EQ(trace(), std::string(kOpened) + "#1  close\n");
    std::filesystem::current_path(directory);
    setenv(variable, earlier.c_str(), 1);
}

TEST_F(Trace, LetsTheProgramContinueWhenItIsKilled)
{
    auto& device = plug();
    EXPECT_EQ(traceClient("open w 030800 orphan w 030900 w 030000"), 128 + SIGKILL);
    EXPECT_TRUE(device.waitForOutputs(3));
    EXPECT_TRUE(eventually([&] { return device.driverBound(); })) << "the program ends as usual";
}

TEST_F(Trace, PassesSignalsOn)
{
    auto& device = plug();
    for (const int signal : {SIGTERM, SIGHUP, SIGUSR1, SIGUSR2, SIGALRM}) {
        (void)device.takeOutputs();
        CtlProcess process(std::string("trace -- ") + kClient + "open w 030800 gone", errorFile());
        ASSERT_TRUE(device.waitForOutputs(1));
        EXPECT_EQ(process.end(signal), 128 + signal);
    }
}

TEST_F(Trace, EndsTheProgramWhenItsTerminalIsClosed)
{
    auto& device = plug();
    int terminal = -1;
    const pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (process == 0) {
        execl(KELPROBECTL, "kelprobectl", "trace", "--", SIM_CLIENT, "open", "w", "030800", "gone",
            nullptr);
        _exit(1);
    }
    ASSERT_TRUE(device.waitForOutputs(1));
    close(terminal);
    int status = 0;
    const bool ended = eventually([&] { return waitpid(process, &status, WNOHANG) == process; });
    EXPECT_TRUE(ended);
    EXPECT_EQ(WEXITSTATUS(status), 128 + SIGHUP);
    if (!ended)
        kill(process, SIGKILL);
}

TEST_F(Trace, RecordsTheReportsOfAllDevices)
{
    plug().faults().failWrite.arm(1);
    const std::string file = files_.path() + "recording";
    EXPECT_EQ(traceClient("open x 030800 w 030800 open w 030000", "--record " + file), 0);
    const auto result = report::readRecordingFile(file);
    const auto& recording = std::get<report::Recording>(result);
    ASSERT_EQ(recording.devices.size(), 1u) << "opened twice, but one device";
    EXPECT_EQ(recording.devices[0].descriptor,
        sim::findProfile("speakerphone")->info.controls().reportDescriptor);
    EXPECT_EQ(recording.devices[0].vendorId, 0x1209);
    EXPECT_EQ(recording.devices[0].name, "Kelprobe Simulated speakerphone");
    ASSERT_EQ(recording.reports.size(), 3u);
    EXPECT_EQ(recording.reports[0].failure, "the device refused it");
    EXPECT_EQ(recording.reports[1].failure, std::nullopt);
    EXPECT_EQ(recording.reports[2].bytes, Bytes({3, 0, 0}));

    EXPECT_EQ(run("trace --record " + file + ".none -- true"), 0);
    EXPECT_FALSE(std::filesystem::exists(file + ".none")) << "no device, no recording";
    EXPECT_NE(err_.find("no device was opened"), std::string::npos) << err_;
}

TEST_F(Trace, PrintsJson)
{
    plug();
    const std::string file = files_.path() + "json";
    EXPECT_EQ(traceClient("open w 030800", "--json --output " + file), 0);
    EXPECT_EQ(err_, "");
    std::istringstream lines(test::content(file));
    std::string calls;
    for (std::string text; std::getline(lines, text);) {
        Json::Value line;
        std::istringstream(text) >> line;
        calls += line["call"].asString() + ' ';
        EXPECT_EQ(line["device"], 1);
        EXPECT_EQ(line["program"], "sim-client");
        if (line["call"] == "output") {
            EXPECT_EQ(line["report"], "030800");
            EXPECT_EQ(line["meaning"][0], "Ring on");
            EXPECT_EQ(line["result"], 3);
        }
    }
    EXPECT_EQ(calls, "open descriptor output close ");
}

TEST_F(Trace, SaysThatAFileCannotBeWrittenAndLetsTheProgramContinue)
{
    auto& device = plug();
    EXPECT_EQ(traceClient("open w 030800", "--output /dev/full"), 3);
    EXPECT_EQ(err_, "kelprobectl: /dev/full: No space left on device; the trace ends here\n");
    EXPECT_TRUE(device.waitForOutputs(1));
    EXPECT_EQ(traceClient("open x 030800", "--output /dev/full"), 2) << "the program's own status";
}

} // namespace
