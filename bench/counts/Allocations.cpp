// Stands in for malloc and counts. operator new of the standard library goes through it.

#include "counts/Allocations.h"

#include <atomic>
#include <cstddef>

namespace {

std::atomic<std::uint64_t> g_allocations{0};

}  // namespace

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_memalign(std::size_t alignment, std::size_t size);

extern "C" void* malloc(std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_memalign(alignment, size);
}

namespace bench {

std::uint64_t allocations()
{
    return g_allocations.load(std::memory_order_relaxed);
}

}  // namespace bench
