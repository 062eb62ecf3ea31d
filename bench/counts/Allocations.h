#pragma once

#include <cstdint>

namespace bench {

/// The number of blocks that all threads have allocated so far, through malloc or functions built on it.
std::uint64_t allocations();

}  // namespace bench
