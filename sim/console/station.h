// A plugged-in device together with the panel on its case, as kelprobe-sim has
// one for each profile it was given.
#pragma once

#include "sim/bus/usb_device.h"
#include "sim/console/transcript.h"
#include "sim/device/panel.h"

#include <optional>

namespace sim {

class Station {
public:
    // Plugs in. `number` is what the transcript calls it.
    Station(UsbBus& bus, const UsbDeviceInfo& info, size_t number, Transcript& transcript);

    // Each prints what came of it. One thread.
    void press(Button button);
    void moveHook(HookPosition position);
    void sendRaw(const Bytes& report);
    void unplug();
    void replug();

    // The fault strikes `number` times or, without a number, always; for
    // "short" and "flood" it is the number of bytes and of reports. False for
    // a name there is not, or if a number is missing.
    [[nodiscard]] bool setFault(std::string_view name, std::optional<int> number);
    void say(const std::string& line) { transcript_.print(number_, line); }

private:
    void send(const std::vector<Panel::InputReport>& reports);
    void send(const std::string& what, const Bytes& report);
    bool armFault(std::string_view name, int times);
    void flood(int reports);
    void clearFaults();

    const size_t number_;
    Transcript& transcript_;
    Panel panel_;
    UsbDevice device_;
};

} // namespace sim
