// Lets operator new fail on demand in the test program.
#pragma once

#include <cstddef>

// What becomes of this thread's next calls of operator new.
struct NewFailure {
    size_t callsLeft = 0;  // until one throws std::bad_alloc; 0 when none is to
    bool recovers = false; // after one; otherwise all later ones throw as well
    bool happened = false;
};
inline thread_local NewFailure newFailure;

// Calls `attempt` with the first allocation failing, then with the second and so on, in both ways,
// until none fails. `after` follows each attempt in which one did, with allocations working again.
template <typename Attempt, typename After>
void forEachAllocation(Attempt attempt, After after)
{
    for (size_t i = 2;; ++i) {
        newFailure = {.callsLeft = i / 2, .recovers = i % 2 != 0};
        attempt();
        newFailure.callsLeft = 0;
        if (!newFailure.happened)
            return;
        after();
    }
}
