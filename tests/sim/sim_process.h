// kelprobe-sim as a process, its input and output.
#pragma once

#include "tests/support/temp_directory.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <thread>
#include <vector>

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
        std::filesystem::remove(fifo_);
        EXPECT_TRUE(std::filesystem::is_empty(directory_.path())) << "files were left behind";
    }

    // Starts a shell command, which finds kelprobe-sim, kelprobectl and sim-client. The one before
    // must have ended. As every process inherits descriptor 3, the output ends when the last
    // process does.
    void start(const std::string& command)
    {
        const std::string script = "PATH=" KELPROBE_SIM_PATH ":$PATH; exec <" + fifo_
            + " 3>&1; echo $$; exec " + command;
        output_ = popen(script.c_str(), "r");
        input_ = fopen(fifo_.c_str(), "w");
        pid_ = std::stoi(line());
    }

    // The next line of standard output, without the time of an event; "end" after the last.
    std::string line()
    {
        constexpr size_t kTime = 13;
        char text[10'000];
        if (!fgets(text, sizeof text, output_))
            return "end";
        const std::string whole(text, strcspn(text, "\n"));
        const bool hasTime = whole.size() > kTime && whole[0] == ' ' && whole[4] == '.';
        return hasTime ? whole.substr(kTime) : whole;
    }

    // Skips lines until one contains the text; "end" after the last.
    std::string lineWith(const std::string& part)
    {
        std::string found = line();
        while (found != "end" && found.find(part) == found.npos)
            found = line();
        return found;
    }

    void give(const std::string& command)
    {
        fprintf(input_, "%s\n", command.c_str());
        fflush(input_);
    }

    // Writes blank lines until the program has read nothing for half a second, at most a megabyte.
    // Returns the number of bytes.
    size_t fillInput()
    {
        constexpr size_t kMost = 1'000'000;
        constexpr int kLimitMs = 500;
        size_t given = 0;
        for (pollfd room{fileno(input_), POLLOUT, 0}; given < kMost && poll(&room, 1, kLimitMs) > 0;
             given += PIPE_BUF)
            give(std::string(PIPE_BUF - 1, ' '));
        return given;
    }

    // Whether it ends, in 20 s, although nobody reads its output.
    bool endsUnread() const
    {
        siginfo_t info = {};
        for (int i = 0; i < 2000 && info.si_pid == 0; ++i) {
            waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return info.si_pid == pid_;
    }

    // Gives each command, unless it is empty, and compares the next line of standard output.
    void play(const std::vector<std::pair<std::string, std::string>>& steps)
    {
        for (const auto& [command, expected] : steps) {
            if (!command.empty())
                give(command);
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

    // The control socket of the bench that was started. Waits until it takes clients.
    std::string socket() const
    {
        constexpr int kTries = 20'000;
        for (int i = 0; i < kTries; ++i) {
            for (const auto& entry : std::filesystem::directory_iterator(directory_.path()))
                if (takesClients(entry.path() / "control"))
                    return entry.path() / "control";
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return "no socket";
    }

    const std::string& directory() const { return directory_.path(); }

    pid_t pid_ = -1;

private:
    static bool takesClients(const std::string& path)
    {
        const int file = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        const bool connected
            = connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        close(file);
        return connected;
    }

    const test::TempDirectory directory_;
    const std::string fifo_ = directory_.path() + "in";
    FILE* input_ = nullptr;
    FILE* output_ = nullptr;
};

// Runs a shell command and returns what it prints.
inline std::string outputOf(const std::string& command, int* exitStatus = nullptr)
{
    FILE* const output = popen(("PATH=" KELPROBE_SIM_PATH ":$PATH; " + command).c_str(), "r");
    std::string text;
    for (int c = 0; (c = fgetc(output)) != EOF;)
        text += static_cast<char>(c);
    const int status = pclose(output);
    if (exitStatus)
        *exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return text;
}
