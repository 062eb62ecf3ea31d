#include "client/Pause.h"

#include <condition_variable>
#include <mutex>

namespace arcsim {

void pause(std::chrono::milliseconds duration)
{
    if (duration.count() <= 0)
        return;
    const auto end = std::chrono::steady_clock::now() + duration;
    std::mutex mutex;
    std::condition_variable never;
    std::unique_lock lock(mutex);
    never.wait_until(lock, end, [] { return false; });
}

}  // namespace arcsim
