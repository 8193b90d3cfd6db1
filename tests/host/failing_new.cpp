#include "tests/host/failing_new.h"

#include <cstdlib>
#include <new>

void* operator new(size_t size)
{
    if (newsLeft <= 0)
        newsLeft = -1;
    else
        --newsLeft;
    void* const memory = newsLeft >= 0 ? std::malloc(size ? size : 1) : nullptr;
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

// Used by std::stable_sort().
void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}
