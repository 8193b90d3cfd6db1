// peer-exchange PATH: a hidapi program that writes a report per command, then waits for one.
#include "bench/program/channel.h"

#include <hidapi/hidapi.h>

#include <array>

int main(int argc, char* argv[])
{
    const int channel = bench::channelFromEnvironment();
    hid_device* const device = argc == 2 ? hid_open_path(argv[1]) : nullptr;
    if (!device)
        return EXIT_FAILURE;
    const std::array<unsigned char, 3> ledsOff{3, 0, 0};
    std::array<unsigned char, 64> report{};
    bench::tell(channel, bench::Moment::Ready, bench::now());
    for (bench::Command command; bench::receive(channel, command);) {
        const int64_t begin = bench::now();
        static_cast<void>(hid_write(device, ledsOff.data(), ledsOff.size()));
        bench::tell(channel, bench::Moment::Acted, bench::now() - begin);
        static_cast<void>(hid_read(device, report.data(), report.size()));
        bench::tell(channel, bench::Moment::Report, bench::now());
    }
    hid_close(device);
    return EXIT_SUCCESS;
}
