#pragma once

#include <cstdint>

namespace task {

/// Why a task's body runs. No other value is ever passed; a task that never runs is never called.
enum class ExecutionReason : std::uint8_t
{
    UNDELAYED = 1,  ///< the task was added without delay
    DELAYED = 2,    ///< the task was added with a delay other than zero, a negative one included
};

}  // namespace task
