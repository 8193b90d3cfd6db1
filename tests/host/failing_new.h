// Lets operator new fail on demand in the test program.
#pragma once

#include <cstddef>
#include <initializer_list>

// While one exists, operator new throws std::bad_alloc on the thread that made it: at the Nth call
// only (Then::Recovers) or from there on (Then::KeepsFailing).
class FailingNew {
public:
    enum class Then { Recovers, KeepsFailing };

    FailingNew(size_t nth, Then then);
    ~FailingNew();
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;

    [[nodiscard]] static bool hasFailed();
};

// Calls `attempt` with the first allocation failing, then with the second and so on, in both ways,
// until none fails. `after` follows each attempt in which one did, with allocations working again.
template <typename Attempt, typename After>
void forEachAllocation(Attempt attempt, After after)
{
    for (size_t nth = 1;; ++nth) {
        for (const auto then : {FailingNew::Then::KeepsFailing, FailingNew::Then::Recovers}) {
            {
                const FailingNew failing(nth, then);
                attempt();
                if (!FailingNew::hasFailed())
                    return;
            }
            after();
        }
    }
}
