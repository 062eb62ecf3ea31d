#pragma once

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KELARC_SANITIZER_ALLOCATES
#endif
#endif
#ifdef KELARC_SANITIZER_ALLOCATES
#include <sanitizer/allocator_interface.h>
#else
#include <malloc.h>
#endif

/// Bytes that are allocated and not freed. A sanitizer has an allocator of its own, of which mallinfo2() knows nothing.
inline std::size_t heldBytes()
{
#ifdef KELARC_SANITIZER_ALLOCATES
    return __sanitizer_get_current_allocated_bytes();
#else
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}
