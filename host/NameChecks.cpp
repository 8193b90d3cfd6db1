// The checks by device name that are declared in IKXHost.h.
#include "host/DeviceNames.h"
#include "host/IKXHost.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

constexpr uint32_t kLegacyNameSize = 32;

bool Contains(const char* name, const char* part)
{
    return std::strstr(name, part) != nullptr;
}

long LeadingNumber(const char* name)
{
    return std::strtol(name, nullptr, 10);
}

} // namespace

void IsSameConferenceDevice(const char* nameA, const char* nameB, uint8_t* differs)
{
    if (!differs)
        return;
    *differs = 1;
    if (!nameA || !nameB || LeadingNumber(nameA) != LeadingNumber(nameB))
        return;
    const bool same
        = std::any_of(std::begin(KX::kConferenceDeviceNames), std::end(KX::kConferenceDeviceNames),
            [&](const char* known) { return Contains(nameA, known) && Contains(nameB, known); });
    *differs = same ? 0 : 1;
}

int IsKnownSpeakerphone(const char* name)
{
    return name
        && std::any_of(std::begin(KX::kSpeakerphoneNames), std::end(KX::kSpeakerphoneNames),
            [&](const char* known) { return Contains(name, known); });
}

bool IsCaptureBox(const char* name)
{
    return name && Contains(name, KX::kCaptureBoxName);
}

char* GetLegacyDeviceName(char** name, uint32_t* capacity)
{
    static char legacyName[kLegacyNameSize] = "Revolabs";
    if (name)
        *name = legacyName;
    if (capacity)
        *capacity = kLegacyNameSize;
    return legacyName;
}
