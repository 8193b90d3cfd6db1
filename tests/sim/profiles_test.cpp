#include "hid/model/BuiltInDescriptor.h"
#include "sim/profile/profiles.h"
#include "tests/support/device_file.h"
#include "tests/support/temp_directory.h"

#include <gtest/gtest.h>

#include <set>

namespace {

TEST(Profiles, DifferInTheirIdsAndBuiltInHasTheDescriptorThatKelprobeHas)
{
    std::set<std::pair<uint16_t, uint16_t>> ids;
    for (const sim::Profile& profile : sim::profiles())
        EXPECT_TRUE(ids.emplace(profile.info.vendorId, profile.info.productId).second)
            << profile.name;
    const sim::UsbDeviceInfo& info = sim::findProfile("built-in")->info;
    EXPECT_EQ(std::pair(info.vendorId, info.productId),
        std::pair(KX::kBuiltInVendorId, KX::kBuiltInProductId));
    EXPECT_EQ(info.controls().reportDescriptor,
        sim::Bytes(KX::kBuiltInDescriptor.begin(), KX::kBuiltInDescriptor.end()));
}

TEST(Profiles, EveryDescriptorFileHasAnOriginAndALicence)
{
    for (const char* const directory : {KELPROBE_TEST_DEVICES "/", KELPROBE_TEST_PROFILES "/"}) {
        const std::string origins = test::content(std::string(directory) + "ORIGINS.md");
        for (const auto& [file, text] : test::filesIn(directory))
            EXPECT_TRUE(
                !file.ends_with(".hex") || origins.find("| `" + file + "` |") != origins.npos)
                << directory << file;
    }
}

} // namespace
