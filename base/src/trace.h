// Diagnostic traces of the host module: where they go, and how they are emitted.
//
// This library declares the settings, so that every layer can trace, but does not define them. Each
// program that calls Trace() or TraceThis() defines KX::traceSettings once, with its own observer
// or none. They should be constant-initialised, so that tracing also works before main.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

// Receives traces, from any thread and from several at once.
class ITraceObserver {
public:
    // `kind` is KX::kTraceText. `text` is valid during the call only. `length` counts the whole
    // formatted message and its terminating NUL, even when the text was cut: never read more than
    // KX::kTraceBufferSize bytes of `text`.
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

// May be changed at any time by any thread.
struct TraceSettings {
    std::atomic<ITraceObserver*> observer; // not owned; null switches tracing off
    std::atomic<uint32_t> enableFlags = ~0u;
    std::atomic<uint32_t> levelMask = ~0u; // a trace passes when the mask has its level bit
};

extern TraceSettings traceSettings;

// Formats as printf() does, into a buffer of kTraceBufferSize bytes, and passes the text to the
// observer. Longer text is cut. Any thread; blocks only as the observer does. A trace that does not
// pass still costs the call, the evaluation of its arguments and one to three atomic loads.
[[gnu::format(printf, 2, 3)]] void Trace(TraceLevel level, const char* format, ...);

// Trace() with " this=0x" and the address of `object` after the text, as far as there is room.
[[gnu::format(printf, 3, 4)]] void TraceThis(
    const void* object, TraceLevel level, const char* format, ...);

} // namespace KX
