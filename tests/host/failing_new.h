// Lets operator new fail on demand in the test program.
#pragma once

#include <cstddef>
#include <initializer_list>

// While one exists, an allocation of the thread that made it throws std::bad_alloc: the Nth from
// then on, and with Then::KeepsFailing all later ones too.
class FailingNew {
public:
    enum class Then { Recovers, KeepsFailing };

    FailingNew(size_t nth, Then then);
    ~FailingNew();
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;

    // Whether an allocation has failed.
    [[nodiscard]] bool struck() const;

    // Calls `attempt` with the first allocation failing, then with the second and so on, until none
    // fails. Each is tried once with Then::KeepsFailing and once with Then::Recovers. `after`
    // follows each attempt that failed, with allocations working again.
    template <typename Attempt, typename After>
    static void forEachAllocation(Attempt attempt, After after)
    {
        for (size_t nth = 1;; ++nth) {
            for (const Then then : {Then::KeepsFailing, Then::Recovers}) {
                bool struck = false;
                {
                    FailingNew failure(nth, then);
                    attempt(failure);
                    struck = failure.struck();
                }
                if (!struck)
                    return;
                after();
            }
        }
    }
    template <typename Attempt>
    static void forEachAllocation(Attempt attempt)
    {
        forEachAllocation(attempt, [] {});
    }
};
