#include "tools/ctl/check/watched_step.h"

namespace ctl {

Entries ofKind(const Entries& entries, Entry::Kind kind)
{
    Entries found = entries;
    std::erase_if(found, [kind](const Entry& entry) { return entry.kind != kind; });
    return found;
}

std::vector<Entry::Kind> eventsIn(const Entries& entries)
{
    std::vector<Entry::Kind> events;
    for (const Entry& entry : entries)
        if (isEvent(entry.kind))
            events.push_back(entry.kind);
    return events;
}

} // namespace ctl
