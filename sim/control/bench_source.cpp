#include "sim/control/bench_source.h"

#include <algorithm>

namespace sim {
namespace {

struct Source {
    GSource base; // first: GLib allocates the whole and knows only this
    Bench* bench;
    gpointer fdTag;
    bool held; // events are not waited for
};

bool isDue(const Bench& bench)
{
    const auto next = bench.nextTick();
    return next && *next <= bench.now();
}

gboolean prepare(GSource* base, gint* timeout)
{
    auto* const source = reinterpret_cast<Source*>(base);
    const Bench& bench = *source->bench;
    if (const bool held = bench.isHeld(); held != source->held) {
        source->held = held;
        g_source_modify_unix_fd(base, source->fdTag, held ? GIOCondition{} : G_IO_IN);
    }
    *timeout = -1;
    if (const auto next = bench.nextTick()) {
        using Milliseconds = std::chrono::duration<gint, std::milli>;
        constexpr Milliseconds kLongest{1000};
        const auto left = std::clamp<std::chrono::microseconds>(
            *next - bench.now(), std::chrono::microseconds(0), kLongest);
        *timeout = std::chrono::ceil<Milliseconds>(left).count();
    }
    return isDue(bench);
}

gboolean check(GSource* base)
{
    const auto* const source = reinterpret_cast<Source*>(base);
    return g_source_query_unix_fd(base, source->fdTag) != 0 || isDue(*source->bench);
}

gboolean dispatch(GSource* base, GSourceFunc, gpointer)
{
    reinterpret_cast<Source*>(base)->bench->tick();
    return G_SOURCE_CONTINUE;
}

GSourceFuncs functions = {prepare, check, dispatch, nullptr, nullptr, nullptr};

} // namespace

BenchSource::BenchSource(Bench& bench)
    : source_(g_source_new(&functions, sizeof(Source)))
{
    auto* const source = reinterpret_cast<Source*>(source_);
    source->bench = &bench;
    source->held = false;
    source->fdTag = g_source_add_unix_fd(source_, bench.fd(), G_IO_IN);
    g_source_attach(source_, nullptr);
}

BenchSource::~BenchSource()
{
    g_source_destroy(source_);
    g_source_unref(source_);
}

} // namespace sim
