#pragma once

#include "kelarc/Call.h"
#include "kelarc/CallPolicy.h"
#include "kelarc/KelArc.h"

#include <type_traits>
#include <utility>

namespace kelarc {

/// Queues a task that is named after its call; `body` is called with the call's text, which it takes for its log lines.
template <typename Body>
void KelArc::addTask(const CallPolicy& policy, std::string&& call, Body&& body)
{
    std::string name = joined({kSource, ".", std::to_string(policy.taskLine), ": ", call});
    // A full queue answers 0 and keeps nothing: the request is dropped without a word, as published.
    m_taskQueue.addTask(
        std::move(name),
        [call = std::move(call), body = std::forward<Body>(body)](task::ExecutionReason) { body(call); },
        std::chrono::milliseconds(0));
}

}  // namespace kelarc
