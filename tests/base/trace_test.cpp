#include "base/src/trace.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

struct Observer final : ITraceObserver {
    void Reset() override { }
    void TraceRecord(uint32_t kind, uint32_t level, const char* text, size_t size) override
    {
        EXPECT_EQ(kind, KX::kTraceText);
        messages += std::to_string(level) + text + " " + std::to_string(size) + "|";
    }
    std::string messages;
};

TEST(Trace, PassesWithAnObserverAndBothBitsAndNamesTheObjectIfThereIsRoom)
{
    Observer observer;
    KX::Trace(KX::kTraceError, "no observer");
    KX::traceSettings.observer = &observer;
    KX::traceSettings.levelMask = ~KX::kTraceInfo;
    KX::Trace(KX::kTraceInfo, "masked");
    KX::Trace(KX::kTraceError, "not %s", "masked");
    KX::traceSettings.enableFlags = ~KX::kTraceEnabled;
    KX::Trace(KX::kTraceError, "switched off");
    KX::traceSettings.enableFlags = KX::traceSettings.levelMask = ~0u;

    const std::string longest(KX::kTraceBufferSize - 1, 'x');
    KX::Trace(KX::kTraceInfo, "%sand more", longest.c_str());
    KX::TraceThis(&observer, KX::kTraceInfo, "%s", longest.c_str());
    KX::TraceThis(&observer, KX::kTraceInfo, "text");
    KX::traceSettings.observer = nullptr;

    char last[64];
    const int size = snprintf(last, sizeof last, "text this=0x%p", static_cast<void*>(&observer));
    const std::string full_size = std::to_string(KX::kTraceBufferSize + 8); // not the cut one
    EXPECT_EQ(observer.messages,
        "1not masked 11|2" + longest + " " + full_size + "|2" + longest + " "
            + std::to_string(KX::kTraceBufferSize) + "|2" + last + " " + std::to_string(size + 1)
            + "|");
}

} // namespace
