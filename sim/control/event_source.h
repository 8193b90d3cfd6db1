// Owner of a GLib event source.
#pragma once

#include <glib.h>

namespace sim {

// Destroys the source with itself. The source may have been destroyed before.
class EventSource {
public:
    // `id` is what g_child_watch_add(), g_unix_fd_add() and the like return.
    explicit EventSource(guint id)
        : source_(g_source_ref(g_main_context_find_source_by_id(nullptr, id)))
    {
    }
    // Takes over a reference to the source.
    explicit EventSource(GSource* source)
        : source_(source)
    {
    }
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;
    ~EventSource()
    {
        g_source_destroy(source_);
        g_source_unref(source_);
    }

private:
    GSource* const source_;
};

} // namespace sim
