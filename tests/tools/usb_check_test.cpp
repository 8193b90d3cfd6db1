// kelprobe-usb-check as a process, on the simulated bus of this one.
#include "tests/support/bus_test.h"

#include <cstdio>

namespace {

class UsbCheck : public BusTest {
protected:
    // Runs the program, which has to print these texts. Returns its exit status.
    int run(std::initializer_list<const char*> texts = {})
    {
        FILE* const pipe = popen(USB_CHECK, "r");
        output_.clear();
        for (int c = 0; (c = fgetc(pipe)) != EOF;)
            output_ += static_cast<char>(c);
        for (const char* const text : texts)
            EXPECT_NE(output_.find(text), std::string::npos) << text << " not in:\n" << output_;
        return WEXITSTATUS(pclose(pipe));
    }

    std::string output_;
};

TEST_F(UsbCheck, SaysWhatToDoAboutEachDevice)
{
    EXPECT_EQ(run({"No USB HID device is present"}), 1);
    auto& open = plug("speakerphone");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(output_, "1209:0001 on bus 1, device 2: can be opened\n");
    EXPECT_EQ(open.counters().claims, 1) << "it really claims";
    EXPECT_TRUE(open.driverBound() && !open.claimed()) << "and gives the driver back";

    auto& forbidden = plug("led-per-report");
    forbidden.setOpenable(false);
    // Advice although another one opens.
    EXPECT_EQ(run({"bus 1, device 2: can be opened\n", "bus 1, device 3: no permission\n",
                  "70-kelprobe.rules"}),
        0);
    open.faults().refuseClaim.arm();
    EXPECT_EQ(run({"bus 1, device 2: in use by another program\n", "close the program"}), 1);
    EXPECT_TRUE(open.driverBound()) << "also after a refused claim";
}

} // namespace
