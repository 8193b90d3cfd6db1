// Why a call to hidapi failed, in words. Pure.
#pragma once

#include "tools/ctl/traffic/call.h"

#include <string_view>

namespace ctl {

struct FailureWords {
    std::string_view key;  // for JSON: "no-permission"
    std::string_view text; // for people: "no permission"
};

// Of libusb's error, which is negative, or 0 if there is none.
[[nodiscard]] FailureWords usbFailure(int usbError);

// Whether libusb's error says that the device was unplugged.
[[nodiscard]] bool meansGone(int usbError);

// Of a call whose result is negative.
[[nodiscard]] FailureWords failureOf(const Call& call);

} // namespace ctl
