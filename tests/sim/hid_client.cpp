// A program that knows nothing of the simulation, to be run by kelprobe-sim:
// opens the HID device VVVV:PPPP and takes the steps that its arguments name.
//
// open       open the device, in ten seconds  w HEX  write the report
// fail       opening must fail               r HEX  wait for the report, which must be this one
// gone       wait until the device is gone   kill   end by SIGKILL
//
// Exit status: the number of the argument that failed, or 0.
#include "hid_handle.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

sim::Bytes bytes(const char* text)
{
    return text ? sim::fromHex(text).value_or(sim::Bytes{}) : sim::Bytes{};
}

class Client {
public:
    Client(const char* vendor, const char* product)
        : vendor_(static_cast<uint16_t>(strtoul(vendor, nullptr, 16)))
        , product_(static_cast<uint16_t>(strtoul(product, nullptr, 16)))
    {
    }

    // `argument` is the one behind the step's name.
    bool take(const std::string& step, const char* argument)
    {
        if (step == "open")
            return openEventually();
        if (step == "fail")
            return !open();
        if (step == "gone")
            return readReport(hid_).empty() && hid_read_timeout(hid_.get(), nullptr, 0, 0) == -1;
        if (step == "w")
            return writeReport(hid_, bytes(argument));
        if (step == "r")
            return readReport(hid_) == bytes(argument);
        return step == "kill" && std::raise(SIGKILL);
    }

private:
    bool open()
    {
        hid_.reset();
        hid_.reset(hid_open(vendor_, product_, nullptr));
        return hid_ != nullptr;
    }

    // A device that was unplugged is back only after a while.
    bool openEventually()
    {
        for (int tries = 0; tries < 1000 && !open(); ++tries)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return hid_ != nullptr;
    }

    const uint16_t vendor_;
    const uint16_t product_;
    Hid hid_;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3)
        return 1;
    Client client(argv[1], argv[2]);
    for (int i = 3; i < argc; ++i) {
        const std::string step = argv[i];
        const bool hasArgument = step == "w" || step == "r";
        if (!client.take(step, argv[i + 1])) {
            fprintf(stderr, "client: argument %d, %s, failed\n", i, argv[i]);
            return i;
        }
        i += hasArgument ? 1 : 0;
    }
    return 0;
}
