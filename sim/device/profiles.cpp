#include "sim/device/profiles.h"

#include "report/format/descriptor_file.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace sim {
namespace {

Bytes readDescriptor(const fs::path& file)
{
    auto result = report::readDescriptorFile(file);
    if (const auto* error = std::get_if<report::DescriptorError>(&result))
        throw std::runtime_error(error->text);
    return std::get<report::DescriptorBytes>(std::move(result));
}

struct Row {
    std::string_view name;
    std::string_view description;
    const char* file; // of a real device: named after its ids
    uint16_t vendorId;
    uint16_t productId;
    const char16_t* manufacturer;
    const char16_t* product;
    const char16_t* serialNumber;
    bool hasOutEndpoint = true;
};

// pid.codes' vendor id. Its product ids 1 to 0x10 are for tests.
constexpr uint16_t kTestVendor = 0x1209;

constexpr Row kRows[] = {
    {"speakerphone", "speakerphone, all controls in report 3", "speakerphone.hex", kTestVendor, 1,
        u"Kelprobe", u"Simulated speakerphone", u"S0001"},
    {"built-in", "the speakerphone whose descriptor is built into Kelprobe", "speakerphone.hex",
        0x0b0e, 0x0410, u"Kelprobe", u"Simulated built-in speakerphone", u"S0006"},
    {"no-report-ids", "speakerphone whose reports have no ids", "no-report-ids.hex", kTestVendor, 2,
        u"Kelprobe", u"Simulated without report ids", u"S0002"},
    {"led-per-report", "headset with a separate report for each LED", "047f-c056.hex", 0x047f,
        0xc056, u"Kelprobe", u"Simulated LED per report", u"S0003"},
    {"no-out-endpoint", "speakerphone that receives reports by control transfers", "413c-8223.hex",
        0x413c, 0x8223, u"Kelprobe", u"Simulated without OUT endpoint", u"", false},
    {"webcam", "webcam with a mute LED and no other", "webcam.hex", kTestVendor, 3, u"Kelprobe",
        u"Simulated webcam", u"S0005"},
    {"no-telephony", "headset with volume keys and no telephony controls", "no-telephony.hex",
        kTestVendor, 4, u"", u"Simulated headset", u""},
};

std::vector<Profile> readProfiles()
{
    const fs::path directory = profileDirectory();
    std::vector<Profile> list;
    for (const Row& row : kRows) {
        UsbDeviceInfo info{row.vendorId, row.productId, row.manufacturer, row.product,
            row.serialNumber, readDescriptor(directory / row.file)};
        info.hasOutEndpoint = row.hasOutEndpoint;
        list.push_back({row.name, row.description, std::move(info)});
    }
    return list;
}

} // namespace

fs::path profileDirectory()
{
    if (const char* const named = std::getenv("KELPROBE_PROFILES"); named && *named)
        return named;
    fs::path installed
        = fs::read_symlink("/proc/self/exe").parent_path() / KELPROBE_INSTALLED_PROFILES;
    return fs::is_directory(installed) ? installed : fs::path(KELPROBE_SOURCE_PROFILES);
}

std::span<const Profile> profiles()
{
    static const std::vector<Profile> list = readProfiles();
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
