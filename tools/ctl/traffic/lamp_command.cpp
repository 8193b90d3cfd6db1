#include "tools/ctl/traffic/lamp_command.h"

#include "tools/ctl/cli/stop_signals.h"
#include "tools/ctl/traffic/lamp_report.h"
#include "tools/ctl/traffic/send_target.h"
#include "tools/ctl/usb/device_words.h"
#include "tools/text/lower_case.h"
#include "tools/text/printable.h"
#include "tools/text/suggestion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <utility>

namespace ctl {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::array<std::string_view, 3> kActions{"on", "off", "blink"};
constexpr std::chrono::milliseconds kBlinkTime{500};
constexpr int kSignalWaitMs = 50; // until a signal is noticed

struct LampOptions {
    std::string name;
    std::string action;
    std::optional<std::string> device;
    double seconds = 0; // no limit if 0
    bool json = false;
};

std::string namesOf(const std::vector<Lamp>& lamps)
{
    std::string text;
    for (const Lamp& lamp : lamps)
        text += (text.empty() ? "" : ", ") + lamp.name;
    return text;
}

[[noreturn]] void failUnknown(
    const std::string& name, const std::vector<Lamp>& lamps, const SendTarget& target)
{
    const std::string ids = idsText(target.entry);
    if (lamps.empty())
        throw Failure(kFellShort, ids + " has no lamps");
    if (isLampName(name, target.names))
        throw Failure(kFellShort, ids + " has no " + name + " lamp; it has " + namesOf(lamps));
    std::vector<std::string_view> names;
    names.reserve(lamps.size());
    for (const Lamp& lamp : lamps)
        names.push_back(lamp.name);
    const std::string_view nearest = text::nearest(name, names);
    throw Failure(kWrongUse,
        "unknown lamp \"" + text::printable(name) + '"'
            + (nearest.empty() ? "; " + ids + " has " + namesOf(lamps)
                               : "; did you mean " + std::string(nearest) + '?'));
}

Lamp findLamp(const std::string& name, const SendTarget& target)
{
    const std::vector<Lamp> lamps = lampsOf(target.layout, target.names);
    const auto found = std::find_if(
        lamps.begin(), lamps.end(), [&](const Lamp& lamp) { return lamp.name == name; });
    if (found == lamps.end())
        failUnknown(name, lamps, target);
    return *found;
}

// A lamp of a device that is open. The destructor switches it off if it may be lit.
class LampSwitch {
public:
    LampSwitch(const SendTarget& target, Lamp lamp, bool json)
        : target_(target)
        , lamp_(std::move(lamp))
        , json_(json)
        , connection_(target.entry)
    {
    }
    ~LampSwitch()
    {
        if (!lit_)
            return;
        try {
            connection_.write(lamp_.off);
        } catch (const Failure&) {
            // The reason why the command ends is another one.
        }
    }
    LampSwitch(const LampSwitch&) = delete;
    LampSwitch& operator=(const LampSwitch&) = delete;

    // Prints the report before it sends it. Throws Failure.
    void set(bool on)
    {
        const report::Bytes& report = on ? lamp_.on : lamp_.off;
        target_.print(report::ReportKind::kOutput, report, json_);
        lit_ = lit_ || on;
        connection_.write(report);
        lit_ = on;
    }

    [[nodiscard]] bool lit() const { return lit_; }

    // Returns early when a signal arrives. Throws DeviceGone.
    void waitUntil(Clock::time_point end, const StopSignals& stop)
    {
        while (!stop.stopped() && Clock::now() < end)
            (void)connection_.read(kSignalWaitMs);
    }

private:
    const SendTarget& target_;
    const Lamp lamp_;
    const bool json_;
    HidConnection connection_;
    bool lit_ = false;
};

Clock::time_point endAfter(double seconds)
{
    const std::chrono::duration<double> limit(seconds);
    return seconds > 0 ? Clock::now() + std::chrono::duration_cast<Clock::duration>(limit)
                       : Clock::time_point::max();
}

void light(LampSwitch& lamp, const LampOptions& options, const StopSignals& stop)
{
    const Clock::time_point end = endAfter(options.seconds);
    const bool blinks = options.action == "blink";
    if (options.seconds <= 0)
        Output::err().line("Ctrl-C switches the lamp off.");
    while (!stop.stopped() && Clock::now() < end) {
        lamp.set(!lamp.lit());
        lamp.waitUntil(blinks ? std::min(Clock::now() + kBlinkTime, end) : end, stop);
    }
    if (lamp.lit())
        lamp.set(false);
}

void checkAction(const std::string& action)
{
    if (std::find(kActions.begin(), kActions.end(), action) != kActions.end())
        return;
    const std::string_view nearest = text::nearest(action, kActions);
    throw Failure(kWrongUse,
        "unknown action \"" + text::printable(action) + "\"; "
            + (nearest.empty() ? "write on, off or blink"
                               : "did you mean " + std::string(nearest) + '?'));
}

// The error of --for, empty if there is none.
std::string limitOf(const std::string& text)
{
    constexpr double kDay = 86400;
    double seconds = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, seconds);
    if (error == std::errc() && rest == end && seconds > 0 && seconds <= kDay)
        return {};
    return '"' + text::printable(text) + "\" is not a number of seconds above 0, at most 86400";
}

int switchLamp(const LampOptions& options)
{
    checkAction(options.action);
    const StopSignals stop;
    const SendTarget target(options.device);
    LampSwitch lamp(target, findLamp(options.name, target), options.json);
    if (options.action == "off")
        lamp.set(false);
    else
        light(lamp, options, stop);
    return kFine;
}

} // namespace

void addLampCommand(Command program, Run& run)
{
    Command command = program.addCommand("lamp", "Switch a lamp of a device on, off or blink");
    const auto options = std::make_shared<LampOptions>();
    command.addOption("NAME", options->name, "off-hook, mute, ring, hold or another LED by name")
        .required();
    command.addOption("ACTION", options->action, "on, off or blink").required();
    command.addOption("--for", options->seconds, "Switch it off after this many seconds")
        .placeholder("SECONDS")
        .check(limitOf);
    command.addFlag("--json", options->json, "Print one line of JSON for each report");
    command.addOption("--device", options->device, "The device: vvvv:pppp, path or number");
    command.footer(
        "Prints each report before it is sent. The other lamps of the report are switched off.\n"
        "With on and blink the device stays open until Ctrl-C or the end of the time; then the\n"
        "lamp is switched off and the device given back to the system.\n"
        "Exit status: 0 fine, 1 the device has no such lamp or does not take the report, 2 wrong\n"
        "use, 3 no device, or it cannot be opened or has gone.\n"
        "Example: kelprobectl lamp ring blink --for 5");
    command.action(run, [options] {
        options->name = text::lowerCase(options->name);
        options->action = text::lowerCase(options->action);
        return switchLamp(*options);
    });
}

} // namespace ctl
