#pragma once

#include "client/ArcSim.h"
#include "client/Notifier.h"
#include "host/Request.h"
#include "modem/Reply.h"

#include <chrono>
#include <string>

namespace arcsim {

/// The way to the simulated modem: in this process or behind a socket. All functions may be called from any thread.
class Channel
{
public:
    virtual ~Channel() = default;

    /// Returns with the answer when the latency is over.
    virtual modem::Reply ask(const Request& request) = 0;
    /// Reports a call that was answered without the modem.
    virtual void passBy(Function function) = 0;
    /// Called when the notifier has the newly registered handler.
    virtual void handlerIsSet() = 0;
    /// Called when a handler was registered without the modem.
    virtual void setHandler(bool isSet) = 0;
    /// Lets `duration` pass on the calling thread.
    virtual void elapse(std::chrono::milliseconds duration) = 0;

    /// Events that are due; called on the notification thread.
    virtual Notifier::Due takeDueEvents() = 0;

    /// The modem in its start state, latencies off.
    virtual void reset() = 0;
    virtual void setRealisticLatency(bool on) = 0;
    virtual std::string setting(const std::string& key) = 0;
    virtual void forceSetting(const std::string& key, const std::string& quoted) = 0;
    virtual Engine engine() = 0;
    virtual bool isOpen() = 0;

    /// The process exits.
    virtual void stop() = 0;
};

}  // namespace arcsim
