// Receives the diagnostic traces of the host and the stack.
#pragma once

#include "base/src/trace.h"

// Has no state, so any thread may call it at any time. KX::traceSettings points to the only object,
// from the start of the program to its exit.
class CLocalTrace final : public ITraceObserver {
public:
    // Drops the trace.
    void TraceRecord(uint32_t kind, uint32_t levelBit, const char* text, size_t length) override;

    // Truncates or creates the file logs/kxhost.log below the directory that RKB_HOME names.
    // Ignores errors.
    void Reset() override;
};
