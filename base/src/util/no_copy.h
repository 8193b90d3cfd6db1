// A base class for objects that must not be copied: a thread, a mutex, an open file.
#pragma once

namespace rkb {

class no_copy {
public:
    no_copy(const no_copy&) = delete;
    no_copy& operator=(const no_copy&) = delete;

protected:
    no_copy() = default;
    ~no_copy() = default;
};

} // namespace rkb
