// Bytes as on the bus.
#pragma once

#include "report/bytes.h"

#include <cstddef>

namespace sim {

using report::Bytes;
using report::fromHex;
using report::toHex;

constexpr uint8_t lowByte(size_t value)
{
    return static_cast<uint8_t>(value & 0xff);
}

constexpr uint8_t highByte(size_t value)
{
    return static_cast<uint8_t>((value >> 8) & 0xff);
}

} // namespace sim
