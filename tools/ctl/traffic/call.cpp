#include "tools/ctl/traffic/call.h"

#include "tools/ctl/calls/trace_message.h"

#include <cstring>

namespace ctl {

std::chrono::microseconds Call::time() const
{
    const bool received
        = kind == HID_CALL_READ || kind == HID_CALL_GET_FEATURE || kind == HID_CALL_GET_INPUT;
    return received ? begin + duration : begin;
}

std::optional<Call> parseTraceMessage(std::span<const uint8_t> message)
{
    trace_header header{};
    if (message.size() < sizeof header)
        return std::nullopt;
    std::memcpy(&header, message.data(), sizeof header);
    const std::span<const uint8_t> rest = message.subspan(sizeof header);
    if (rest.size() != uint64_t{header.path_size} + header.data_size || header.kind < HID_CALL_OPEN
        || header.kind > HID_CALL_GET_INPUT)
        return std::nullopt;
    Call call;
    call.kind = static_cast<hid_call_kind>(header.kind);
    call.process = header.process;
    call.program.assign(header.program, strnlen(header.program, sizeof header.program));
    call.device = header.device;
    call.opener = header.opener;
    call.begin = std::chrono::microseconds(header.begin);
    call.duration = std::chrono::microseconds(header.duration);
    call.result = header.result;
    call.usbError = header.usb_error;
    call.vendorId = header.vendor_id;
    call.productId = header.product_id;
    const auto pathEnd = rest.begin() + header.path_size;
    call.path.assign(rest.begin(), pathEnd);
    call.data.assign(pathEnd, rest.end());
    return call;
}

} // namespace ctl
