#pragma once

// Replaces the global allocation functions of the one executable that includes this, so that
// every allocation of the process, the library's included, is counted.

#include <atomic>
#include <cstdlib>
#include <new>

static std::atomic<long> allocations { 0 };

void *operator new(std::size_t size)
{
    ++allocations;
    if (void *memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}
