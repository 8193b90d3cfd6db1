// A device of the list in words and in JSON. Pure.
#pragma once

#include "report/usage_names.h"
#include "tools/ctl/usb/device_list.h"

#include <span>

namespace Json {
class Value;
}

namespace ctl {

// "1209:0001", as the user may choose the device.
[[nodiscard]] std::string idsText(const DeviceEntry& entry);

// "Maker Product" in one printable line, "(no name)" without either.
[[nodiscard]] std::string nameText(const DeviceEntry& entry);

// The same with at most 40 columns.
[[nodiscard]] std::string shortNameText(const DeviceEntry& entry);

// "Telephony, Consumer", "unknown" without a descriptor.
[[nodiscard]] std::string pagesText(const DeviceEntry& entry, const report::UsageNames& names);

// "can be opened", "no permission", ...
[[nodiscard]] std::string accessWord(Access access);

// The entries below a head line, in columns.
[[nodiscard]] std::vector<std::string> deviceTable(
    std::span<const DeviceEntry> entries, const report::UsageNames& names);

// As documented in docs/kelprobectl-json.md. "number" is null if it is 0.
[[nodiscard]] Json::Value deviceJson(const DeviceEntry& entry, const report::UsageNames& names);

} // namespace ctl
