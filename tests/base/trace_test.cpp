#include "trace.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

struct Recorder final : ITraceObserver {
    void TraceRecord(uint32_t kind, uint32_t levelBit, const char* text, size_t size) override
    {
        EXPECT_EQ(kind, KX::kTraceText);
        level = levelBit;
        message = text;
        length = size;
        ++count;
    }
    void Reset() override { }

    int count = 0;
    uint32_t level = 0;
    std::string message;
    size_t length = 0;
};

class Trace : public testing::Test {
protected:
    void SetUp() override { KX::traceSettings.observer = &recorder; }
    void TearDown() override
    {
        KX::traceSettings.observer = nullptr;
        KX::traceSettings.enableFlags = ~0u;
        KX::traceSettings.levelMask = ~0u;
    }
    Recorder recorder;
};

TEST_F(Trace, PassesOnlyWithAnObserverTheEnableBitAndTheLevelBit)
{
    KX::Trace(KX::kTraceInfo, "%d", 42);
    EXPECT_EQ(recorder.message, "42");
    EXPECT_EQ(recorder.level, KX::kTraceInfo);
    EXPECT_EQ(recorder.length, 3u);

    KX::traceSettings.levelMask = ~KX::kTraceInfo;
    KX::Trace(KX::kTraceInfo, "masked");
    KX::Trace(KX::kTraceError, "not masked");
    KX::traceSettings.enableFlags = ~KX::kTraceEnabled;
    KX::Trace(KX::kTraceError, "switched off");
    KX::traceSettings.enableFlags = ~0u;
    KX::traceSettings.observer = nullptr;
    KX::Trace(KX::kTraceError, "nobody there");
    EXPECT_EQ(recorder.message, "not masked");
    EXPECT_EQ(recorder.count, 2);
}

TEST_F(Trace, CutsTheTextAndStillTellsItsFullLength)
{
    KX::Trace(KX::kTraceError, "%s", std::string(5000, 'x').c_str());
    EXPECT_EQ(recorder.message, std::string(KX::kTraceBufferSize - 1, 'x'));
    EXPECT_EQ(recorder.length, 5001u);
}

TEST_F(Trace, NamesTheObjectWhereThereIsRoom)
{
    char suffix[64];
    const int suffixLength
        = snprintf(suffix, sizeof suffix, " this=0x%p", static_cast<void*>(this));
    KX::TraceThis(this, KX::kTraceError, "text");
    EXPECT_EQ(recorder.message, std::string("text") + suffix);
    EXPECT_EQ(recorder.length, 4u + static_cast<size_t>(suffixLength) + 1);

    const std::string full(KX::kTraceBufferSize - 1, 'y');
    KX::TraceThis(this, KX::kTraceError, "%s", full.c_str());
    EXPECT_EQ(recorder.message, full);
}

} // namespace
