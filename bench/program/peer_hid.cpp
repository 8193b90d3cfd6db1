// peer-hid PATH: a hidapi program without a window. Reads in a loop, writes one report per command.
#include "bench/program/channel.h"
#include "bench/program/read_loop.h"

#include <thread>

namespace {

void writeOnCommand(hid_device* device, int channel)
{
    const std::array<unsigned char, 3> ledsOff{3, 0, 0};
    for (bench::Command command; bench::receive(channel, command);) {
        const int64_t begin = bench::now();
        static_cast<void>(hid_write(device, ledsOff.data(), ledsOff.size()));
        bench::tell(channel, bench::Moment::Acted, begin);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const int channel = bench::channelFromEnvironment();
    hid_device* const device = argc == 2 ? hid_open_path(argv[1]) : nullptr;
    if (!device)
        return EXIT_FAILURE;
    std::thread([=] {
        bench::readReports(
            device, [=] { bench::tell(channel, bench::Moment::Report, bench::now()); });
    }).detach();
    bench::tell(channel, bench::Moment::Ready, bench::now());
    writeOnCommand(device, channel);
    std::_Exit(EXIT_SUCCESS); // the reader does not end otherwise
}
