// A destination of log lines.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rkb {

// The logging control calls a sink with its mutex held: one call at a time, from any thread, so a
// sink needs no lock of its own for that. From within it a sink must not log. Sinks are never owned
// by the control: a sink outlives every slot it stands in, or the last log call of all. At exit the
// control lets go of all sinks but the library's own before its last words.
class log_it {
public:
    // Takes one whole line. `data` is valid during the call only. 0 on success; an exception
    // counts as a failure and goes no further.
    virtual uint32_t write(uint32_t module_id, uint32_t level, const char* data, size_t length) = 0;
    virtual ~log_it() = default;

protected:
    log_it() = default;
    log_it(const log_it&) = default;
    log_it& operator=(const log_it&) = default;
};

} // namespace rkb
