// One call of a program to hidapi.
#pragma once

#include "report/bytes.h"
#include "tools/ctl/calls/hid_calls.h"

#include <chrono>
#include <optional>
#include <span>
#include <string>

namespace ctl {

// As struct hid_call, with its data.
struct Call {
    hid_call_kind kind = HID_CALL_OPEN;
    int32_t process = 0; // that made the call
    std::string program; // that it runs
    uint32_t device = 0;
    int32_t opener = 0;
    std::chrono::microseconds begin{}; // on the steady clock
    std::chrono::microseconds duration{};
    int result = 0;
    int usbError = 0;
    std::string path; // empty if unknown
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    report::Bytes data;

    // A report that is read exists when the call ends, one that is sent before.
    [[nodiscard]] std::chrono::microseconds time() const;
};

// From a message of a traced program, see trace_message.h. No value if it is malformed.
[[nodiscard]] std::optional<Call> parseTraceMessage(std::span<const uint8_t> message);

} // namespace ctl
