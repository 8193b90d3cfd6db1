#include "base/src/trace.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

struct Observer final : ITraceObserver {
    void Reset() override { }
    void TraceRecord(uint32_t kind, uint32_t level, const char* text, size_t size) override
    {
        messages << kind << " " << level << " " << text << " " << size << "|";
    }
    std::ostringstream messages;
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
    KX::TraceThis(nullptr, KX::kTraceInfo, "text");
    KX::traceSettings.observer = nullptr;
    std::ostringstream expected; // the size of a text that was cut is that of the whole
    expected << "1 1 not masked 11|1 2 " << longest << " " << KX::kTraceBufferSize + 8 << "|1 2 "
             << longest << " " << KX::kTraceBufferSize << "|1 2 text this=0x(nil) 18|";
    EXPECT_EQ(observer.messages.str(), expected.str());
}

} // namespace
