// The keys, words and limits of profiles, for their reader and writer.
#pragma once

#include "sim/device/usb_device_info.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace sim::keys {

inline constexpr auto kSchema = "$schema"; // for editors; not used
inline constexpr auto kDescription = "description";
inline constexpr size_t kMaxDescription = 1000; // characters
inline constexpr auto kVendorId = "vendorId";
inline constexpr auto kProductId = "productId";
inline constexpr auto kRelease = "release";
inline constexpr auto kManufacturer = "manufacturer";
inline constexpr auto kProduct = "product";
inline constexpr auto kSerialNumber = "serialNumber";
inline constexpr auto kUtf16 = "utf16";
inline constexpr auto kSpeed = "speed";
inline constexpr std::string_view kSpeeds[] = {"low", "full", "high"}; // as UsbSpeed
inline constexpr int64_t kMaxPackets[] = {8, 64, 1024};                // of these
inline constexpr auto kInterfaces = "interfaces";
inline constexpr auto kBehaviour = "behaviour";

// Of an interface.
inline constexpr auto kNumber = "number";
inline constexpr auto kClass = "class";
inline constexpr std::string_view kClasses[] = {"hid", "audio", "vendor"};
inline constexpr uint8_t kClassCodes[] = {InterfaceInfo::kHid, 1, 0xff}; // of these
inline constexpr auto kSubclass = "subclass";
inline constexpr auto kProtocol = "protocol";
inline constexpr auto kBoot = "boot";
inline constexpr auto kReportDescriptor = "reportDescriptor";
inline constexpr auto kFile = "file";
inline constexpr auto kClassDescriptors = "classDescriptors";
inline constexpr size_t kMaxClassDescriptors = 80; // the HID descriptor gives its length in a byte
inline constexpr auto kType = "type";
inline constexpr auto kLength = "length";
inline constexpr auto kEndpoints = "endpoints";
inline constexpr auto kIn = "in";
inline constexpr auto kOut = "out";
inline constexpr auto kPacketSize = "packetSize";

// Of the behaviour.
inline constexpr auto kHookSwitch = "hookSwitch";
inline constexpr std::string_view kHookSwitches[]
    = {"follows-lamp", "stays", "momentary"}; // as HookSwitch
inline constexpr auto kAcknowledges = "acknowledges";
inline constexpr std::string_view kLamps[]
    = {"mute", "off-hook", "ring", "speaker", "hold", "microphone", "on-line"};
inline constexpr auto kTogglesMute = "togglesMute";
inline constexpr auto kReactions = "reactions";
inline constexpr auto kLamp = "lamp";
inline constexpr auto kState = "state";
inline constexpr std::string_view kStates[] = {"on", "off"};
inline constexpr auto kReports = "reports";
inline constexpr auto kOnOpen = "onOpen";
inline constexpr size_t kMaxReports = 256; // in a list
inline constexpr size_t kMaxReportBytes = 4096;
inline constexpr auto kLengthError = "lengthError";
inline constexpr int64_t kMaxLengthError = 1024;
inline constexpr auto kDelayMs = "delayMs";
inline constexpr int64_t kMaxDelayMs = 60'000;

} // namespace sim::keys
