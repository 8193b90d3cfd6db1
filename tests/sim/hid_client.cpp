// A program for kelprobe-sim to run: takes the steps that its arguments name with the speakerphone.
//
// open       open the device, in ten seconds  w HEX  write the report
// fail       opening must fail               x HEX  writing the report must fail
// gone       wait until the device is gone   r HEX  wait for the report, which must be this one
// kill       end by SIGKILL
//
// Exit status: the number of the argument that failed, or 0.
#include "tests/sim/hid_handle.h"

#include <csignal>
#include <string>
#include <thread>

namespace {

Hid hid;

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
    const sim::Bytes report = sim::fromHex(*next++).value();
    if (step == "x")
        return !writeReport(hid, report);
    return step == "w" ? writeReport(hid, report) : readReport(hid) == report;
}

} // namespace

int main(int, char** argv)
{
    for (char** next = argv + 1; *next;) {
        char** const step = next++;
        if (!take(*step, next)) {
            fprintf(stderr, "client: %s failed\n", *step);
            return static_cast<int>(step - argv);
        }
    }
    return 0;
}
