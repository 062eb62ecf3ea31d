#include "seeds/Blocks.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> g_held{0};

void* countedOrNull(std::size_t size) noexcept
{
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory != nullptr)
        g_held.fetch_add(1, std::memory_order_relaxed);
    return memory;
}

void* counted(std::size_t size)
{
    if (void* const memory = countedOrNull(size))
        return memory;
    throw std::bad_alloc();
}

void uncounted(void* memory)
{
    if (memory != nullptr)
        g_held.fetch_sub(1, std::memory_order_relaxed);
    std::free(memory);
}

}  // namespace

void* operator new(std::size_t size)
{
    return counted(size);
}
void* operator new[](std::size_t size)
{
    return counted(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return countedOrNull(size);
}
void operator delete(void* memory) noexcept
{
    uncounted(memory);
}
void operator delete[](void* memory) noexcept
{
    uncounted(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    uncounted(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    uncounted(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    uncounted(memory);
}

namespace seeds {

long heldBlocks()
{
    return g_held.load(std::memory_order_relaxed);
}

}  // namespace seeds
