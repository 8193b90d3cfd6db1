#include "host/DeviceFilter.h"

#include <json/json.h>

#include <initializer_list>
#include <utility>

namespace KX {

namespace {

constexpr size_t kBuckets = 10;

// Makers of conference devices.
constexpr std::initializer_list<uint32_t> kDefaultVendors = {0x095D, 0x2574, 0x14ED, 0x2ABF, 0x047F,
    0x046D, 0x0B0E, 0x14BE, 0x6993, 0x1395, 0x2D34, 0x28E6, 0x1656, 0x413C, 0x17EF};
constexpr std::initializer_list<uint32_t> kDefaultVidPids
    = {PackVidPid(0x03F0, 0x0D66), PackVidPid(0x0499, 0x4021)};

DeviceFilter processWideFilter;

template <typename Set>
Set MakeSet()
{
    Set set(kBuckets);
    set.max_load_factor(1.0F);
    return set;
}

DeviceFilter::IdSet MakeIdSet(std::initializer_list<uint32_t> ids)
{
    auto set = MakeSet<DeviceFilter::IdSet>();
    set.insert(ids);
    return set;
}

void AddIds(DeviceFilter::IdSet& set, const Json::Value& list, Json::ArrayIndex count)
{
    for (Json::ArrayIndex i = 0; i < count; ++i)
        set.insert(list[i].asUInt());
}

bool ParseJson(const char* text, Json::Value& document)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations" // its successor accepts other texts
    Json::Reader reader;
#pragma GCC diagnostic pop
    try {
        // Comments are accepted and dropped: collecting them takes JsonCpp quadratic time.
        return reader.parse(text, document, false);
    } catch (const Json::RuntimeError&) {
        return false; // nested beyond JsonCpp's limit
    }
}

} // namespace

DeviceFilter& DeviceFilter::Instance()
{
    return processWideFilter;
}

DeviceFilter::DeviceFilter()
    : vendorWhitelist(MakeSet<IdSet>())
    , vidPidWhitelist(MakeSet<IdSet>())
    , vidPidBlacklist(MakeSet<IdSet>())
    , nameBlacklist(MakeSet<NameSet>())
{
}

void DeviceFilter::FillDefaults()
{
    if (defaultsFilled)
        return;
    IdSet vendors = MakeIdSet(kDefaultVendors);
    IdSet vidPids = MakeIdSet(kDefaultVidPids);
    // From here on nothing can fail.
    if (vendorWhitelist.empty())
        vendorWhitelist.swap(vendors);
    if (vidPidWhitelist.empty())
        vidPidWhitelist.swap(vidPids);
    defaultsFilled = true;
}

bool DeviceFilter::Load(const char* jsonText)
{
    Json::Value document;
    if (!ParseJson(jsonText, document))
        return false;
    const Json::Value& hid = std::as_const(document)["HID"];
    const Json::Value& vendors = hid["WhitelistVendorId"];
    AddIds(vendorWhitelist, vendors, vendors.size());
    // The length of the vendor blacklist bounds both lists of pairs. This is deliberate: existing
    // documents depend on it. Elements after the end of a shorter list count as 0.
    const Json::ArrayIndex pairs = hid["BlacklistVendorId"].size();
    AddIds(vidPidWhitelist, hid["WhitelistVidPid"], pairs);
    AddIds(vidPidBlacklist, hid["BlacklistVidPid"], pairs);
    const Json::Value& names = hid["BlacklistDeviceName"];
    for (Json::ArrayIndex i = 0; i < names.size(); ++i)
        nameBlacklist.insert(names[i].asString());
    return true;
}

} // namespace KX
