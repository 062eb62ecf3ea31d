#pragma once

#include "kelarc/KelArc.h"

#include <memory>
#include <utility>

namespace kelarc {

/// A callback where calls that have begun can keep it alive after it was replaced, and where it keeps its own state
/// from call to call. Null when it is empty. To share it takes no memory, so an event needs none.
template <typename Callback>
std::shared_ptr<Callback> heldApart(Callback&& callback)
{
    return callback ? std::make_shared<Callback>(std::move(callback)) : nullptr;
}

}  // namespace kelarc
