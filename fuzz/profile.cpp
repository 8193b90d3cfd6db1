// A device profile, read, written and read again; its device's panel. Input: the profile's text.
#include "fuzz/require.h"
#include "sim/device/panel.h"
#include "sim/device/usb_descriptors.h"
#include "sim/profile/profile_text.h"

namespace {

report::DescriptorResult ReadNoFile(const std::string& name)
{
    return report::DescriptorError{name + ": not in a fuzz target", true};
}

void PressEverything(const sim::UsbDeviceInfo& info)
{
    static const report::UsageNames noNames;
    sim::Panel panel(info.controls().reportDescriptor, info.behaviour.hookSwitch, noNames);
    for (const auto& button : panel.buttons()) {
        const auto reports = panel.push(button.name);
        Require(reports && !reports->empty());
        (void)panel.meaning(report::ReportKind::kInput, reports->front().report);
    }
    for (const auto& lamp : panel.lamps())
        Require(!lamp.on);
    for (const sim::Bytes& report : info.behaviour.onOpen) {
        for (const sim::LampChange& change : panel.applyOutput(report))
            Require(!change.lamp.empty());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    try {
        const sim::Profile profile = sim::parseProfile(text, "f.json", ReadNoFile);
        const std::string written = sim::writeProfile(profile);
        Require(sim::isProfile(written));
        const sim::Profile again = sim::parseProfile(written, "f.json", ReadNoFile);
        Require(again.info == profile.info && again.description == profile.description);
        Require(sim::configurationDescriptor(profile.info).size() <= 0xffff);
        PressEverything(profile.info);
    } catch (const sim::ProfileError& error) {
        for (const std::string& mistake : error.mistakes) {
            Require(mistake.starts_with("f.json:"));
            Require(mistake.find('\n') == mistake.npos);
        }
    }
    return 0;
}
