#include "tests/host/failing_new.h"

#include <cstdlib>
#include <new>

void* operator new(size_t size)
{
    bool fails = false;
    if (newFailure.callsLeft > 0 && --newFailure.callsLeft == 0) {
        newFailure.callsLeft = newFailure.recovers ? 0 : 1;
        newFailure.happened = fails = true;
    }
    void* const memory = fails ? nullptr : std::malloc(size ? size : 1);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}
