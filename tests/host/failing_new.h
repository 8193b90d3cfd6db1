// Lets operator new fail on demand in the test program.
#pragma once

#include <climits>
#include <utility>

// How often this thread's operator new still succeeds; -1 after it threw std::bad_alloc.
inline thread_local int newsLeft = INT_MAX;

// Calls `attempt` with all allocations failing, then with all but the first and so on, until none
// fails. `after` follows each attempt in which one did, with allocations working again.
template <typename Attempt, typename After>
void forEachAllocation(Attempt attempt, After after)
{
    for (int allowed = 0;; ++allowed) {
        newsLeft = allowed;
        attempt();
        if (std::exchange(newsLeft, INT_MAX) >= 0)
            return;
        after();
    }
}
