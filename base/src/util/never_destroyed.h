// For static objects that threads may still use while the process exits.
#pragma once

namespace rkb {

// Holds a value whose destructor never runs.
template <typename value_t>
union never_destroyed_t {
    constexpr never_destroyed_t()
        : value()
    {
    }
    ~never_destroyed_t() { }

    value_t value;
};

} // namespace rkb
