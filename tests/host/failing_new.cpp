#include "tests/host/failing_new.h"

#include <cstdlib>
#include <new>

namespace {

struct Countdown {
    size_t left = 0; // allocations until one fails; 0 when none is to fail
    bool keepsFailing = false;
    bool struck = false;
};
thread_local Countdown countdown;

bool Fails()
{
    if (countdown.left == 0 || --countdown.left > 0)
        return false;
    if (countdown.keepsFailing)
        countdown.left = 1;
    countdown.struck = true;
    return true;
}

} // namespace

FailingNew::FailingNew(size_t nth, Then then)
{
    countdown = {nth, then == Then::KeepsFailing, false};
}

FailingNew::~FailingNew()
{
    countdown = {};
}

bool FailingNew::struck() const
{
    return countdown.struck;
}

void* operator new(size_t size)
{
    void* const memory = Fails() ? nullptr : std::malloc(size ? size : 1);
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
