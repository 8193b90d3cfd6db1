#include "sim/device/profiles.h"

#include "profile_descriptors.h" // made from profiles/*.hex by CMake

#include <algorithm>
#include <vector>

namespace sim {
namespace {

std::vector<Profile> makeProfiles()
{
    std::vector<Profile> list = {
        {"speakerphone", "speakerphone, all controls in report 3",
            {0x0b0e, 0x0410, u"Kelprobe", u"Simulated speakerphone", u"S0001",
                descriptors::speakerphone()}},
        {"no-report-ids", "speakerphone whose reports have no ids",
            {0x0b0e, 0x2456, u"Kelprobe", u"Simulated without report ids", u"S0002",
                descriptors::no_report_ids()}},
        {"lamp-per-report", "headset with each lamp in a report of its own",
            {0x047f, 0xc056, u"Kelprobe", u"Simulated lamp per report", u"S0003",
                descriptors::lamp_per_report()}},
        {"no-out-endpoint", "speakerphone that gets its reports by control transfers",
            {0x413c, 0x8223, u"Kelprobe", u"Simulated without OUT endpoint", u"",
                descriptors::no_out_endpoint()}},
        {"webcam", "webcam with a mute lamp and no other",
            {0x046d, 0x0944, u"Kelprobe", u"Simulated webcam", u"S0005", descriptors::webcam()}},
        {"no-telephony", "headset with volume keys and no telephony controls",
            {0x046d, 0x0ac4, u"", u"Simulated headset", u"", descriptors::no_telephony()}},
    };
    const auto without = std::find_if(list.begin(), list.end(),
        [](const Profile& profile) { return profile.name == "no-out-endpoint"; });
    without->info.hasOutEndpoint = false;
    return list;
}

} // namespace

std::span<const Profile> profiles()
{
    static const std::vector<Profile> list = makeProfiles();
    return list;
}

const Profile* findProfile(std::string_view name)
{
    const auto list = profiles();
    const auto found = std::find_if(
        list.begin(), list.end(), [name](const Profile& profile) { return profile.name == name; });
    return found == list.end() ? nullptr : &*found;
}

} // namespace sim
