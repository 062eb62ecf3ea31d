#pragma once

#include <cstdint>

namespace bench {

/// Blocks that all threads have asked the process's memory for so far, through malloc or what is built on it.
std::uint64_t allocations();

}  // namespace bench
