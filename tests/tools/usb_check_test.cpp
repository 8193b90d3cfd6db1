// kelprobe-usb-check as a process, on the simulated bus of this one.
#include "tests/support/bus_test.h"

#include <hidapi/hidapi.h>

#include <cstdio>

namespace {

class UsbCheck : public BusTest {
protected:
    // Runs the program. What it printed, sorted lines of devices first, and its exit status.
    static std::pair<std::string, int> run()
    {
        FILE* const pipe = popen(USB_CHECK, "r");
        std::string output;
        for (int c = 0; (c = fgetc(pipe)) != EOF;)
            output += static_cast<char>(c);
        return {output, WEXITSTATUS(pclose(pipe))};
    }

    static bool contains(const std::string& text, const char* part)
    {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(UsbCheck, SaysWhatToDoAboutEachDevice)
{
    const auto [none, statusOfNone] = run();
    EXPECT_TRUE(contains(none, "No USB HID device is present")) << none;
    EXPECT_EQ(statusOfNone, 1);

    auto& open = plug("speakerphone");
    auto& forbidden = plug("led-per-report");
    const auto [fine, statusOfFine] = run();
    EXPECT_EQ(statusOfFine, 0);
    EXPECT_FALSE(contains(fine, "permission") || contains(fine, "in use")) << fine;
    EXPECT_EQ(open.counters().claims, 1) << "it really claims";
    EXPECT_TRUE(open.driverBound() && !open.claimed()) << "and gives the driver back";

    forbidden.setOpenable(false);
    const auto [mixed, statusOfMixed] = run();
    EXPECT_TRUE(contains(mixed, "bus 1, device 2: can be opened\n")) << mixed;
    EXPECT_TRUE(contains(mixed, "bus 1, device 3: no permission\n")) << mixed;
    EXPECT_TRUE(contains(mixed, "70-kelprobe.rules")) << "advice although another one opens";
    EXPECT_EQ(statusOfMixed, 0);

    open.faults().refuseClaim.arm();
    const auto [refused, statusOfRefused] = run();
    EXPECT_TRUE(contains(refused, "bus 1, device 2: in use by another program\n")) << refused;
    EXPECT_TRUE(contains(refused, "close the program")) << refused;
    EXPECT_EQ(statusOfRefused, 1);
    EXPECT_TRUE(open.driverBound()) << "also after a refused claim";
}

} // namespace
