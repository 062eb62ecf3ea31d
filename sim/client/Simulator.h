#pragma once

#include "client/CallBook.h"
#include "client/Channel.h"
#include "client/Notifier.h"

#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace arcsim {

/// The state of the client library in this process: the record of calls, scripted answers, the notification thread, and
/// the channel to the modem, which is behind the socket that ARCSIM_SOCKET names, or else in this process.
///
/// Never destroyed: at exit, threads of the application may still be using it. All functions may be called from any
/// thread. No lock is held while a call waits, runs an Answer's `during` or the handler runs.
class Simulator
{
public:
    static Simulator& instance();

    struct Outcome
    {
        Answer answer{};
        bool scripted = false;  ///< then the code is kept even if the texts do not fit
    };
    /// Handles one call from start to end: records it, and lets a script or the modem answer it.
    Outcome call(const Request& request);

    void reset();
    /// A copy of the text that lives as long as the process.
    const char* keepText(const std::string& text);

    CallBook& book() { return m_book; }
    Notifier& notifier() { return m_notifier; }
    Channel& channel() { return *m_channel; }

private:
    Simulator();

    void shutDown();

    CallBook m_book;
    Notifier m_notifier;
    const std::unique_ptr<Channel> m_channel;

    std::mutex m_mutex;
    std::set<std::string> m_keptTexts;  // guarded by m_mutex
};

}  // namespace arcsim
