// What is left behind when programs and benches end in unusual ways: nothing.
#include "tests/sim/sim_process.h"

namespace {

class Crash : public KelprobeSim {
protected:
    // The processes that were started on the bench with this socket.
    static size_t processesOf(const std::string& socket)
    {
        size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            const std::string environment = test::content(entry.path() / "environ");
            count += environment.find("KELPROBE_SIM=" + socket) != environment.npos;
        }
        return count;
    }

    // Waits until the file has a line, at most 20 s. Returns what it contains.
    static std::string lineIn(const std::string& file)
    {
        constexpr int kTries = 20'000;
        for (int i = 0; i < kTries && test::content(file).find('\n') == std::string::npos; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return test::content(file);
    }

    // Whether the process lives that writes its number into the file.
    static bool lives(const std::string& file)
    {
        const int pid = std::stoi(lineIn(file));
        return !test::content("/proc/" + std::to_string(pid) + "/cmdline").empty();
    }

    const test::TempDirectory files_;
};

TEST_F(Crash, NoProcessOfTheProgramOutlivesTheBench)
{
    for (const auto& [program, status] : {
             std::pair{"sim-client open kill", 128 + SIGKILL},
             {"sim-client fork open", 0},
             {"sh -c 'sleep 1000 & setsid sleep 1000 & exec sim-client open'", 0},
             {"sh -c 'trap \"\" TERM; (trap \"\" TERM; setsid sleep 1000) & exit 3'", 3},
             {"sh -c 'setsid sh -c \"sleep 1000; :\" & kill -SEGV $$'", 128 + SIGSEGV},
         }) {
        start(std::string("kelprobe-sim run -i -- sh -c 'read x; exec \"$0\" \"$@\"' ") + program);
        const std::string path = socket();
        give("go");
        EXPECT_EQ(exitStatus(), status) << program;
        EXPECT_EQ(processesOf(path), 0U) << program;
    }
}

TEST_F(Crash, NoProcessThatHidesOutlivesTheBench)
{
    const std::string file = files_.path() + "pid";
    const std::string sleeper
        = "sh -c \"trap '' TERM; echo \\$\\$ >" + file + "; while :; do sleep 1; done\" 3>&- &";
    const std::string program = files_.file("program", "env -i setsid " + sleeper + " read x");
    start("kelprobe-sim run -i -- sh " + program);
    EXPECT_TRUE(lives(file));
    give("");
    EXPECT_EQ(exitStatus(), 0);
    EXPECT_FALSE(lives(file));

    // In the program's group, those of a bench that was killed.
    std::filesystem::remove(file);
    start("kelprobe-sim run -i -- sh " + files_.file("program", "env -i " + sleeper + " read x"));
    EXPECT_TRUE(lives(file));
    kill(pid_, SIGKILL);
    EXPECT_EQ(exitStatus(), -1);
    EXPECT_TRUE(lives(file));
    EXPECT_EQ(run("kelprobe-sim run -- true"), 0);
    EXPECT_FALSE(lives(file));
}

TEST_F(Crash, ASecondSignalDoesNotShortenTheTimeToEnd)
{
    const std::string file = files_.path() + "file";
    start("kelprobe-sim run -- sh -c 'sh -c \"trap \\\"echo >" + file + "; sleep .6; echo >>" + file
        + "; exit\\\" TERM; echo ready >&2; while :; do sleep .05; done\" 2>&3 & sleep 60'");
    EXPECT_EQ(lineWith("ready"), "ready");
    kill(pid_, SIGTERM);
    EXPECT_EQ(lineIn(file), "\n");
    // Nothing shows that the bench has begun to wait. If it has not, the test proves less.
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    kill(pid_, SIGTERM);
    EXPECT_EQ(exitStatus(), 128 + SIGTERM);
    EXPECT_EQ(test::content(file), "\n\n");
}

TEST_F(Crash, TheNextBenchRemovesWhatAKilledOneLeft)
{
    start("kelprobe-sim run -- sh -c 'setsid sleep 1000 3>&- & sim-client open gone'");
    EXPECT_EQ(lineWith("opened"), "--   opened");
    const std::string path = socket();
    EXPECT_GE(processesOf(path), 2U);
    kill(pid_, SIGKILL);
    EXPECT_EQ(exitStatus(), -1);
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_EQ(processesOf(path), 1U); // the first process ends with the bench

    // A bench that lives is left alone, as is what only has such a name.
    const std::string foreign = directory() + "kelprobe-sim.abcdef";
    std::ofstream(foreign) << "x";
    const std::string longer = directory() + "kelprobe-sim.saved-data";
    const std::string open = directory() + "kelprobe-sim.ABCDEF"; // for others
    for (const std::string& other : {longer, open}) {
        std::filesystem::create_directory(other);
        std::ofstream(other + "/lock") << "x";
    }
    chmod(longer.c_str(), 0700);
    chmod(open.c_str(), 0755);
    EXPECT_EQ(run("kelprobe-sim run -- kelprobe-sim run -- kelprobe-sim expect ring off"), 0);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(processesOf(path), 0U);
    EXPECT_TRUE(std::filesystem::remove(foreign));
    for (const std::string& other : {longer, open})
        EXPECT_EQ(std::filesystem::remove_all(other), 2U) << other;
}

} // namespace
