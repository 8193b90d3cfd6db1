// A destination of log lines.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rkb {

// A sink of log lines. The logging control calls it from any thread, but with its mutex locked, so
// there is one call at a time and a sink needs no lock. A sink must not log.
//
// The control does not own sinks. A sink must not be destroyed before it has been taken out of all
// slots or logging has ended. At exit the control uses only the library's default file sink.
class log_it {
public:
    // Takes one whole line. `data` is valid during the call only. Returns 0 on success. The control
    // catches exceptions and treats them as failures.
    virtual uint32_t write(uint32_t module_id, uint32_t level, const char* data, size_t length) = 0;
    virtual ~log_it() = default;

protected:
    log_it() = default;
    log_it(const log_it&) = default;
    log_it& operator=(const log_it&) = default;
};

} // namespace rkb
