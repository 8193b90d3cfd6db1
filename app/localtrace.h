// The program's receiver of the diagnostic traces of the host and the stack.
#pragma once

#include "base/src/trace.h"

// Keeps no state: any thread may call it at any time. The one object of it is what
// KX::traceSettings holds from load to exit.
class CLocalTrace final : public ITraceObserver {
public:
    // Drops the trace: what the user sees is the log list of the window alone.
    void TraceRecord(uint32_t kind, uint32_t levelBit, const char* text, size_t length) override;

    // Empties, or creates, logs/kxhost.log below the directory that RKB_HOME names. Does nothing
    // when that file cannot be opened, and reports nothing.
    void Reset() override;
};
