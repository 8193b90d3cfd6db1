#include "host/DeviceFilter.h"

#include "host/IKXHost.h"

#include <json/json.h>

#include <initializer_list>
#include <mutex>
#include <utility>

namespace KX {

namespace {

constexpr size_t kBuckets = 10;

template <typename T>
std::unordered_set<T> MakeSet()
{
    std::unordered_set<T> set(kBuckets);
    set.max_load_factor(1.0F);
    return set;
}

std::unordered_set<uint32_t> vendorWhitelist = MakeSet<uint32_t>();
std::unordered_set<uint32_t> vidPidWhitelist = MakeSet<uint32_t>();
std::unordered_set<uint32_t> vidPidBlacklist = MakeSet<uint32_t>();
std::unordered_set<std::string> nameBlacklist = MakeSet<std::string>();

// Makers of conference devices.
constexpr std::initializer_list<uint32_t> kDefaultVendors = {0x095D, 0x2574, 0x14ED, 0x2ABF, 0x047F,
    0x046D, 0x0B0E, 0x14BE, 0x6993, 0x1395, 0x2D34, 0x28E6, 0x1656, 0x413C, 0x17EF};
constexpr std::initializer_list<uint32_t> kDefaultVidPids
    = {PackVidPid(0x03F0, 0x0D66), PackVidPid(0x0499, 0x4021)};

void AddIds(std::unordered_set<uint32_t>& set, const Json::Value& list, Json::ArrayIndex count)
{
    for (Json::ArrayIndex i = 0; i < count; ++i)
        set.insert(list[i].asUInt());
}

// JsonCpp gives up on nesting beyond its limit with an exception: text that does not parse, too.
bool ParseJson(const char* text, Json::Value& document)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations" // the successor takes other texts
    Json::Reader reader;
#pragma GCC diagnostic pop
    try {
        // Comments may stand anywhere and are dropped: keeping them takes JsonCpp quadratic time.
        return reader.parse(text, document, false);
    } catch (const Json::RuntimeError&) {
        return false;
    }
}

} // namespace

const std::unordered_set<uint32_t>& VendorWhitelist()
{
    return vendorWhitelist;
}

const std::unordered_set<uint32_t>& VidPidWhitelist()
{
    return vidPidWhitelist;
}

const std::unordered_set<uint32_t>& VidPidBlacklist()
{
    return vidPidBlacklist;
}

const std::unordered_set<std::string>& NameBlacklist()
{
    return nameBlacklist;
}

void FillDefaultFilters()
{
    static std::once_flag filled;
    std::call_once(filled, [] {
        if (vendorWhitelist.empty())
            vendorWhitelist.insert(kDefaultVendors);
        if (vidPidWhitelist.empty())
            vidPidWhitelist.insert(kDefaultVidPids);
    });
}

} // namespace KX

int LoadHidFilterConfig(const char* jsonText, int length)
{
    using namespace KX;
    Json::Value document;
    if (!jsonText || length < 2 || !ParseJson(jsonText, document))
        return 0;
    const Json::Value& hid = std::as_const(document)["HID"];
    const Json::Value& vendors = hid["WhitelistVendorId"];
    AddIds(vendorWhitelist, vendors, vendors.size());
    // The vendor blacklist's length bounds both lists of pairs. Kept on purpose: what a document
    // means depends on it. Elements beyond a shorter list count as 0.
    const Json::ArrayIndex pairs = hid["BlacklistVendorId"].size();
    AddIds(vidPidWhitelist, hid["WhitelistVidPid"], pairs);
    AddIds(vidPidBlacklist, hid["BlacklistVidPid"], pairs);
    const Json::Value& names = hid["BlacklistDeviceName"];
    for (Json::ArrayIndex i = 0; i < names.size(); ++i)
        nameBlacklist.insert(names[i].asString());
    return 1;
}
