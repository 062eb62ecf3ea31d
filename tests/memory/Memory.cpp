#include "memory/Memory.h"

#include <cstddef>
#include <cstdlib>

namespace {

constexpr int kUnlimited = -1;
thread_local int t_left = kUnlimited;

void* allocate(std::size_t size)
{
    if (t_left == 0)
        throw std::bad_alloc();
    if (t_left != kUnlimited)
        --t_left;
    if (void* const memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size)
{
    return allocate(size);
}
void* operator new[](std::size_t size)
{
    return allocate(size);
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace memory {

void leave(int count)
{
    t_left = count;
}

void leaveAll()
{
    t_left = kUnlimited;
}

}  // namespace memory
