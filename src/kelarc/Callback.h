#pragma once

#include "kelarc/KelArc.h"

#include <functional>
#include <memory>
#include <utility>

namespace kelarc {

/// A shared callback. A call that has begun keeps it alive after it was replaced, and its own state lasts from call to
/// call. Null when the callback is empty. Sharing it takes no memory, so an event needs none.
template <typename... Arguments>
std::shared_ptr<std::function<void(Arguments...)>> heldApart(std::function<void(Arguments...)>&& callback)
{
    return callback ? std::make_shared<std::function<void(Arguments...)>>(std::move(callback)) : nullptr;
}

}  // namespace kelarc
