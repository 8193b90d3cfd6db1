#include "sim/console/client_process.h"
#include "tests/support/temp_directory.h"

#include <csignal>

namespace {

// The exit status of a shell command that is run as a client.
int statusOf(const char* script, const std::string& libraries = "libm.so.6")
{
    const char* const command[] = {"sh", "-c", script, nullptr};
    std::optional<int> result;
    const sim::ClientProcess client(
        const_cast<char* const*>(command), libraries, [&result](int status) { result = status; });
    while (!result)
        g_main_context_iteration(nullptr, TRUE);
    return *result;
}

TEST(ClientProcess, AddsToTheInheritedLdPreloadAndLeavesOursAlone)
{
    setenv("LD_PRELOAD", "libdl.so.2:libm.so.6", 1);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(statusOf("test $LD_PRELOAD = libdl.so.2:libm.so.6:libc.so.6", "libc.so.6"), 0);
    EXPECT_STREQ(getenv("LD_PRELOAD"), "libdl.so.2:libm.so.6");
    unsetenv("LD_PRELOAD");
    EXPECT_EQ(statusOf("test $LD_PRELOAD = libc.so.6", "libc.so.6"), 0);
    EXPECT_EQ(getenv("LD_PRELOAD"), nullptr);
}

TEST(ClientProcess, InheritsNoSignalSettingsInputOrGroup)
{
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int signal : {SIGTERM, SIGQUIT, SIGUSR1})
        sigaddset(&blocked, signal);
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGUSR2, SIG_IGN);
    for (const char* const condition : {
             R"(test $(grep -cE '^Sig(Blk|Ign):.0+$' /proc/self/status) = 2)",
             R"(test $(readlink /proc/self/fd/0) = /dev/null)",
             R"(test $(readlink /proc/$$/fd/1) = $(readlink /proc/$$/fd/2))",
             R"(test $(cut -d' ' -f5 /proc/$$/stat) = $$)",
         })
        EXPECT_EQ(statusOf(condition), 0) << condition;
}

TEST(ClientProcess, IsEndedByForceIfNecessary)
{
    const test::TempDirectory directory;
    const std::string script
        = "trap '' TERM; touch " + directory.path() + "ready; sleep 1000; sleep 1000";
    const char* const command[] = {"sh", "-c", script.c_str(), nullptr};
    int result = -1;
    {
        const sim::ClientProcess client(const_cast<char* const*>(command), "libm.so.6",
            [&result](int status) { result = status; });
        while (!std::filesystem::exists(directory.path() + "ready"))
            g_main_context_iteration(nullptr, FALSE);
    }
    EXPECT_EQ(result, 128 + SIGKILL);
}

} // namespace
