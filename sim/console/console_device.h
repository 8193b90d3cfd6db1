// A simulated device: kelprobe-sim makes one for each profile on its command line.
#pragma once

#include "sim/bus/usb_device.h"
#include "sim/console/transcript.h"

#include <optional>

namespace sim {

// The device with its LEDs and buttons. Prints its events. Only one thread may use it; lines about
// a client's operations are printed on umockdev's thread.
class ConsoleDevice {
public:
    // Plugs in. `number` is the device's number in the transcript, which must outlive the device.
    ConsoleDevice(UsbBus& bus, const UsbDeviceInfo& info, size_t number, Transcript& transcript);

    void press(std::string_view button);
    void setHook(HookPosition position);
    void sendRaw(const Bytes& report);
    void unplug();
    void replug();

    // Switches on one of the faults that the command `help` lists, for the next `number` times, or
    // for ever without a number. For "short" the number is that of bytes, for "flood" that of
    // reports. False if there is no such fault or a number is missing or too large.
    [[nodiscard]] bool setFault(std::string_view name, std::optional<int> number);

    void print(const std::string& line) { transcript_.print(number_, line); }

private:
    void printEvent(const DeviceEvent& event);
    bool armFault(std::string_view name, int times);
    bool flood(int reports);
    void clearFaults();

    const size_t number_;
    Transcript& transcript_;
    UsbDevice device_;
};

} // namespace sim
