#pragma once

#include "client/Channel.h"
#include "host/ModemHost.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace arcsim {

/// The modem inside the process that uses it.
///
/// The mutex is never held while a call waits or a file is read.
class EmbeddedModem : public Channel
{
public:
    /// `notifier` fetches events with takeDueEvents(). Throws std::runtime_error when raw output cannot be created.
    explicit EmbeddedModem(Notifier& notifier);

    modem::Reply ask(const Request& request) override;
    void passBy(Function function) override;
    void handlerIsSet() override {}
    void setHandler(bool isSet) override;
    void elapse(std::chrono::milliseconds duration) override;
    Notifier::Due takeDueEvents() override;
    void reset() override;
    void setRealisticLatency(bool on) override;
    std::string setting(const std::string& key) override;
    void forceSetting(const std::string& key, const std::string& quoted) override;
    Engine engine() override;
    bool isOpen() override;
    void stop() override;

private:
    static bool prepare(std::unique_ptr<ModemHost>& host);
    void use(const std::function<void(ModemHost& host)>& action);

    Notifier& m_notifier;

    // guarded by m_mutex
    std::mutex m_mutex;
    std::condition_variable m_wasReset;
    std::unique_ptr<ModemHost> m_host;
    ModemHost::SessionId m_session = 0;
    unsigned m_generation = 0;  ///< grows with every reset
    unsigned m_hanging = 0;     ///< calls that only a reset ends
    bool m_usable = false;      ///< the scenario can be simulated
};

}  // namespace arcsim
