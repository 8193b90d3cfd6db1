// The names of known devices, each in a slot of 256 bytes. They are searched for in the name of a
// device as case-sensitive substrings.
#pragma once

namespace KX {

inline constexpr int kDeviceNameSize = 256;

inline constexpr char kCaptureBoxName[kDeviceNameSize] = "XI100DUSB-HDMI";

inline constexpr char kSpeakerphoneNames[][kDeviceNameSize] = {
    "Revolabs",
    "Logi Group Speakerphone",
    "Jabra SPEAK 810",
    "Jabra SPEAK 510",
};

// In the order of comparison. It is deliberate that the speakerphones are listed again and that two
// names are listed in both spellings: devices use either.
inline constexpr char kConferenceDeviceNames[][kDeviceNameSize] = {
    "ConferenceCam Connect",
    "Revolabs",
    "ConferenceCam CC3000e Speaker",
    "Logi Group Speakerphone",
    "Jabra SPEAK 810",
    "Jabra SPEAK 510",
    "Crestron Mercury",
    "Logitech MeetUp",
    "HDL300",
    "VB342",
    "Trio 8500",
    "Trio 8800",
    "Trio8500",
    "Trio8800",
    "Logitech Rally",
    "Logi Rally Audio",
    "ClearOne Converge PRO 2 48V USB Audio",
    "Poly V-USB Speakerphone",
    "Yealink CP960 Speakerphone",
    "Yamaha YVC-1000",
    "Yamaha CS-700",
    "Yamaha AudioVideo Device",
};

} // namespace KX
