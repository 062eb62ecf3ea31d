#pragma once

#include "ExecutionReason.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace task {

/// One task, waiting or running. Moved, never copied; destroying it destroys the body without calling it.
struct TaskContainer
{
    TaskContainer(std::uint32_t taskId, std::string&& taskName, std::function<void(ExecutionReason)>&& body,
                  std::chrono::steady_clock::time_point planned, bool delayed)
        : id(taskId), name(std::move(taskName)), task(std::move(body)), plannedTime(planned), isDelayed(delayed)
    {
    }

    TaskContainer(TaskContainer&&) = default;
    TaskContainer& operator=(TaskContainer&&) = default;
    TaskContainer(const TaskContainer&) = delete;
    TaskContainer& operator=(const TaskContainer&) = delete;
    ~TaskContainer() = default;

    std::uint32_t id;                                   ///< given by the queue, unique among live tasks, never 0
    std::string name;                                   ///< given by the caller; the queue never interprets it
    std::function<void(ExecutionReason)> task;          ///< the body, called once
    std::chrono::steady_clock::time_point plannedTime;  ///< the task does not run before
    bool isDelayed;                                     ///< added with a delay other than zero
};

}  // namespace task
