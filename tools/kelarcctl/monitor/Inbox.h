#pragma once

#include "kelarcctl/Session.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace kelarcctl {

class Collector;

/// Passes messages from the library's threads to the main thread, which waits for descriptor(). Shared with callbacks,
/// which may run late. All functions may be called from any thread.
class Inbox
{
public:
    using Message = std::function<void(Collector&)>;

    void post(Message message);
    /// Adds a message that may be dropped if too many are waiting.
    void postNews(Message message);

    /// Readable from the first message until take().
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
