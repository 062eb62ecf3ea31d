#include "kelarc/KelArc.h"

namespace kelarc {

std::uint32_t KelArc::getRunningTaskId() const
{
    return m_taskQueue.getRunningTaskId();
}

std::string KelArc::getRunningTaskName() const
{
    return m_taskQueue.getRunningTaskName();
}

std::uint32_t KelArc::getPendingTasks() const
{
    return m_taskQueue.getPendingTasks();
}

std::int64_t KelArc::getDelayedExecutionTime() const
{
    return m_taskQueue.getDelayedExecutionTime();
}

std::string KelArc::tasksToString() const
{
    return m_taskQueue.tasksToString();
}

}  // namespace kelarc
