#include "tests/host/failing_new.h"

#include <cstdlib>
#include <new>

namespace {

thread_local size_t callsLeft = 0; // until one fails; 0 when none is to fail
thread_local FailingNew::Then thenWhat = FailingNew::Then::Recovers;
thread_local bool failed = false;

bool Fails()
{
    if (callsLeft == 0 || --callsLeft > 0)
        return false;
    callsLeft = thenWhat == FailingNew::Then::KeepsFailing ? 1 : 0;
    failed = true;
    return true;
}

} // namespace

FailingNew::FailingNew(size_t nth, Then then)
{
    callsLeft = nth;
    thenWhat = then;
    failed = false;
}

FailingNew::~FailingNew()
{
    callsLeft = 0;
}

bool FailingNew::hasFailed()
{
    return failed;
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
