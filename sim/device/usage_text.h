// Numbers as hexadecimal digits without a prefix. Pure.
#pragma once

#include "report/layout.h"
#include "sim/device/wire_bytes.h"

#include <string>

namespace sim {

// Four digits, as a vendor id is usually written.
inline std::string hex16(uint16_t number)
{
    return toHex(Bytes{highByte(number), lowByte(number)}, "");
}

// Page and id: "000b0020".
inline std::string usageText(report::Usage usage)
{
    return hex16(usage.page) + hex16(usage.id);
}

} // namespace sim
