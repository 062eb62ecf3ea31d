#pragma once

#include "kelarc/KelArc.h"

#include <functional>
#include <memory>
#include <utility>

namespace kelarc {

/// A callback where calls that have begun can keep it alive after it was replaced, and where it keeps its own state
/// from call to call. Null when it is empty. To share it takes no memory, so an event needs none.
template <typename... Arguments>
std::shared_ptr<std::function<void(Arguments...)>> heldApart(std::function<void(Arguments...)>&& callback)
{
    return callback ? std::make_shared<std::function<void(Arguments...)>>(std::move(callback)) : nullptr;
}

}  // namespace kelarc
