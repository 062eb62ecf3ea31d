#pragma once

#include "kelarc/KelArc.h"

#include <memory>
#include <utility>

namespace kelarc {

/// A callable whose copies share one target, so that a call that has begun keeps a callback alive after it was
/// replaced, and a callback with state of its own keeps that state from call to call.
template <typename... Args>
std::function<void(Args...)> shared(std::function<void(Args...)>&& callback)
{
    if (!callback)
        return {};
    return [target = std::make_shared<std::function<void(Args...)>>(std::move(callback))](Args... args) {
        (*target)(args...);
    };
}

/// Replaces a callback that other threads may be about to call. The old one is destroyed without the lock held: its
/// destructor is the user's code.
template <typename Callback>
void KelArc::replaceCallback(Callback& member, Callback&& replacement)
{
    Callback incoming = shared(std::move(replacement));
    const std::lock_guard<std::mutex> lock(m_callbackMutex);
    member.swap(incoming);
}

/// The callback as it is now, alive for as long as the copy.
template <typename Callback>
Callback KelArc::snapshotOf(const Callback& member)
{
    const std::lock_guard<std::mutex> lock(m_callbackMutex);
    return member;
}

}  // namespace kelarc
