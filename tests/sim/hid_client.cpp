// A program for kelprobe-sim to run: takes the steps that its arguments name with the speakerphone.
//
// open       open the device, in ten seconds  w HEX  write the report
// fail       opening must fail               x HEX  writing the report must fail
// gone       wait until the device is gone   r HEX  wait for the report, which must be this one
// kill       end by SIGKILL                  flood N  write an empty report N times
// orphan     end the parent by SIGKILL       fork     take the other steps in a child process
// reuse      close the descriptors from 200 on and open a socket with the first of these numbers;
//            nothing must be written to it until the end
//
// Exit status: the number of the argument that failed, or 0.
#include "tests/sim/hid_handle.h"

#include <csignal>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

Hid hid;
bool isChild = false;   // of "fork"
int watchedSocket = -1; // the other end of the one that "reuse" opens

bool open()
{
    hid.reset();
    hid.reset(hid_open(0x1209, 0x0001, nullptr));
    return hid != nullptr;
}

// A device that was unplugged is back only after a while.
bool openEventually()
{
    for (int tries = 0; tries < 1000 && !open(); ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return hid != nullptr;
}

bool reuse()
{
    constexpr int kFirst = 200;
    int ends[2] = {-1, -1};
    close_range(kFirst, ~0u, 0);
    if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0)
        return false;
    watchedSocket = ends[1];
    return dup2(ends[0], kFirst) == kFirst;
}

bool socketIsUnused()
{
    char byte = 0;
    return watchedSocket < 0 || recv(watchedSocket, &byte, 1, MSG_DONTWAIT) < 0;
}

// Returns true in the child; the parent ends with the child's status. hidapi's thread for an open
// device is not in the child, so only calls that fail at once are possible there.
bool forked()
{
    const pid_t child = fork();
    isChild = child == 0;
    if (isChild)
        return true;
    int status = -1;
    waitpid(child, &status, 0);
    _exit(WEXITSTATUS(status));
}

bool flood(int reports)
{
    while (reports > 0 && writeReport(hid, {3, 0, 0}))
        --reports;
    return reports == 0;
}

// Takes a step; `next` points to the argument after its name.
bool take(const std::string& step, char**& next)
{
    if (step == "open")
        return openEventually();
    if (step == "fail")
        return !open();
    if (step == "gone")
        return readReport(hid).empty() && hid_read_timeout(hid.get(), nullptr, 0, 0) == -1;
    if (step == "kill")
        return std::raise(SIGKILL) == 0;
    if (step == "orphan")
        return kill(getppid(), SIGKILL) == 0;
    if (step == "fork")
        return forked();
    if (step == "reuse")
        return reuse();
    if (step == "flood")
        return flood(std::stoi(*next++));
    const sim::Bytes report = sim::fromHex(*next++).value();
    if (step == "x")
        return !writeReport(hid, report);
    return step == "w" ? writeReport(hid, report) : readReport(hid) == report;
}

int takeAll(char** argv)
{
    for (char** next = argv + 1; *next;) {
        char** const step = next++;
        if (!take(*step, next)) {
            fprintf(stderr, "client: %s failed\n", *step);
            return static_cast<int>(step - argv);
        }
    }
    return socketIsUnused() ? 0 : 99;
}

} // namespace

int main(int, char** argv)
{
    const int status = takeAll(argv);
    if (isChild)
        _exit(status); // without closing the device
    return status;
}
