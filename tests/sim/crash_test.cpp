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
    const std::string foreign = directory() + "kelprobe-sim.file";
    std::ofstream(foreign) << "x";
    EXPECT_EQ(run("kelprobe-sim run -- kelprobe-sim run -- kelprobe-sim expect ring off"), 0);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(processesOf(path), 0U);
    EXPECT_TRUE(std::filesystem::remove(foreign));
}

} // namespace
