#pragma once

#include "kelarc/Types.h"

#include <mutex>
#include <variant>
#include <vector>

namespace navigator {

/// LSTA notification of one system.
struct LstaReport
{
    kelarc::lsta::TYPE type{};
    int status = 0;
    double value = 0;
};

/// Notification of the modem with a copy of its data, which lives during the callback only.
struct Notification
{
    kelarc::NOTIFY_ID id{};
    int length = 0;                      ///< as delivered
    std::vector<unsigned char> start{};  ///< the first bytes of the data
};

using ModemEvent = std::variant<LstaReport, Notification>;

/// Carries events from the library's threads to the main thread, which waits for descriptor().
/// All functions may be called from any thread.
class Inbox
{
public:
    Inbox();
    ~Inbox();
    Inbox(const Inbox&) = delete;
    Inbox& operator=(const Inbox&) = delete;

    void put(ModemEvent event);
    /// Wakes the main thread without an event: an answer has come.
    void wake();

    /// Readable from put() or wake() on until take().
    int descriptor() const { return m_descriptor; }
    std::vector<ModemEvent> take();

private:
    const int m_descriptor;
    std::mutex m_mutex;
    std::vector<ModemEvent> m_events;  ///< guarded by m_mutex
};

}  // namespace navigator
