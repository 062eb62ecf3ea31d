#pragma once

#include "kelarcctl/Session.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace kelarcctl {

class Collector;

/// Carries what happens on the library's threads to the main thread, which waits for descriptor(). Shared with
/// callbacks, which may come late. All functions may be called from any thread.
class Inbox
{
public:
    using Message = std::function<void(Collector&)>;

    void post(Message message);
    /// One that may be lost, because so many wait already.
    void postNews(Message message);

    /// Readable from a message on until take().
    int descriptor() const { return m_bell.descriptor(); }
    std::vector<Message> take();
    std::uint64_t lost();

private:
    Bell m_bell{};
    std::mutex m_mutex{};
    std::vector<Message> m_messages{};  ///< guarded by m_mutex, like the rest
    std::uint64_t m_lost = 0;
};

}  // namespace kelarcctl
