#include "base/src/trace.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

class Trace : public testing::Test, protected ITraceObserver {
protected:
    void SetUp() override { KX::traceSettings.observer = this; }
    void TearDown() override { KX::traceSettings.observer = nullptr; }
    void Reset() override { }
    void TraceRecord(uint32_t kind, uint32_t level, const char* text, size_t size) override
    {
        EXPECT_EQ(kind, KX::kTraceText);
        messages += std::to_string(level) + text + "|";
        length = size;
    }
    std::string messages; // each after its level
    size_t length = 0;
};

TEST_F(Trace, PassesOnlyWithAnObserverTheEnableBitAndTheLevelBit)
{
    KX::Trace(KX::kTraceInfo, "%d", 42);
    EXPECT_EQ(length, 3u);
    KX::traceSettings.levelMask = ~KX::kTraceInfo;
    KX::Trace(KX::kTraceInfo, "masked");
    KX::Trace(KX::kTraceError, "not masked");
    KX::traceSettings.enableFlags = ~KX::kTraceEnabled;
    KX::Trace(KX::kTraceError, "switched off");
    KX::traceSettings.enableFlags = KX::traceSettings.levelMask = ~0u;
    KX::traceSettings.observer = nullptr;
    KX::Trace(KX::kTraceError, "no observer");
    EXPECT_EQ(messages, "242|1not masked|");
}

TEST_F(Trace, CutsTheTextAndNamesTheObjectWhereThereIsRoom)
{
    const std::string longest(KX::kTraceBufferSize - 1, 'x');
    KX::Trace(KX::kTraceError, "%sand more", longest.c_str());
    EXPECT_EQ(length, KX::kTraceBufferSize + 8); // the full one
    KX::TraceThis(this, KX::kTraceError, "%s", longest.c_str());
    EXPECT_EQ(messages, "1" + longest + "|1" + longest + "|");

    char expected[64];
    const int size
        = snprintf(expected, sizeof expected, "1text this=0x%p|", static_cast<void*>(this));
    messages.clear();
    KX::TraceThis(this, KX::kTraceError, "text");
    EXPECT_EQ(messages, expected);
    EXPECT_EQ(length, static_cast<size_t>(size) - 1); // a NUL instead of the level and the bar
}

} // namespace
