// Diagnostic traces of the host module: where they go, and how they are emitted.
//
// The settings are declared here so that every layer can trace; the program defines them once,
// with its own observer (see app/localtrace.cpp), as constant-initialised data: tracing works
// before main and after it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

// Receives traces. May be called from any thread, several at once.
class ITraceObserver {
public:
    // `kind` is KX::kTraceText. `length` counts the whole formatted message and its terminating
    // NUL, also when the text was cut: never read more than KX::kTraceBufferSize bytes of `text`.
    virtual void TraceRecord(uint32_t kind, uint32_t levelBit, const char* text, size_t length) = 0;

    // Empties the trace destination.
    virtual void Reset() = 0;

protected:
    ~ITraceObserver() = default;
};

namespace KX {

inline constexpr uint32_t kTraceText = 1;
inline constexpr uint32_t kTraceEnabled = 1; // bit 0 of TraceSettings::enableFlags
inline constexpr size_t kTraceBufferSize = 2048;

enum TraceLevel : uint32_t {
    kTraceError = 1u << 0,
    kTraceInfo = 1u << 1,
    kTraceDebug = 1u << 2,
};

struct TraceSettings {
    std::atomic<ITraceObserver*> observer; // not owned; null switches tracing off
    std::atomic<uint32_t> enableFlags = ~0u;
    std::atomic<uint32_t> levelMask = ~0u; // a trace passes when the mask has its level bit
};

extern TraceSettings traceSettings;

// Formats as printf does, into a buffer of kTraceBufferSize bytes; longer text is cut there. Costs
// three loads when nobody listens. Any thread.
[[gnu::format(printf, 2, 3)]] void Trace(TraceLevel level, const char* format, ...);

// The same with " this=0x" and the address of `object` behind the text, when there is room.
[[gnu::format(printf, 3, 4)]] void TraceThis(
    const void* object, TraceLevel level, const char* format, ...);

} // namespace KX
