// Numbers as they are in the bench's JSON. Pure.
#pragma once

#include "report/layout.h"

#include <array>
#include <cstdio>
#include <string>

namespace sim {

// Four digits, as a vendor id is usually written.
inline std::string hex16(uint16_t number)
{
    std::array<char, 5> text{};
    snprintf(text.data(), text.size(), "%04x", unsigned{number});
    return text.data();
}

// Page and id: "000b0020".
inline std::string usageText(report::Usage usage)
{
    return hex16(usage.page) + hex16(usage.id);
}

} // namespace sim
