#pragma once

#include "client/Channel.h"
#include "client/SocketStream.h"
#include "protocol/LineBuffer.h"
#include "protocol/Messages.h"

#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace arcsim {

/// The modem behind a socket, as a RIL daemon's client library sees it.
///
/// While nobody serves the socket, every call answers 31; where the user may not connect, 21. When a connection is
/// lost, waiting calls answer 31. The library reconnects with the next call, or within a moment if the application has
/// a connection open. It restores an open connection and a registered handler, so the application goes on without a
/// restart.
///
/// A thread receives messages and passes events to the notifier. The object is never destroyed before the process ends.
class RemoteModem : public Channel
{
public:
    RemoteModem(std::string path, Notifier& notifier);
    ~RemoteModem() override;

    modem::Reply ask(const Request& request) override;
    void passBy(Function) override {}
    void setHandler(bool isSet) override;
    void elapse(std::chrono::milliseconds duration) override;
    Notifier::Due takeDueEvents() override { return {}; }
    void handlerIsSet() override;
    void reset() override;
    void setRealisticLatency(bool on) override;
    std::string setting(const std::string& key) override;
    void forceSetting(const std::string& key, const std::string& quoted) override;
    Engine engine() override;
    bool isOpen() override;
    void stop() override;

private:
    struct Waiting
    {
        const Request* request = nullptr;  ///< null for a control
        std::optional<Json> answer{};
        bool isLost = false;
    };

    std::optional<Json> exchange(Json message, const Request* request = nullptr);
    Json control(Json message);
    bool connect();
    void startReceiving();
    void lose();
    void receive(std::unique_lock<std::mutex>& lock);
    void run();
    std::string takeAll(LineBuffer& lines);
    void take(const std::string& line);
    void remember(const Request& request, int code);
    modem::Reply unreachable(const Request& request);
    static unsigned threadNumber();

    const std::string m_path;
    Notifier& m_notifier;

    // guarded by m_mutex, which is not held while sending or printing
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::shared_ptr<SocketStream> m_stream{};  ///< null while there is no connection
    int m_codeOfUnreachable = modem::kNoConnection;
    std::int64_t m_lastId = 0;
    std::map<std::int64_t, Waiting*> m_waiting{};
    Hello m_state;                           ///< the state to restore after a reconnect
    std::vector<Notifier::Event> m_early{};  ///< events for the new handler that arrive while it is being set
    bool m_isSettingHandler = false;
    std::int64_t m_registering = -1;  ///< the call that registers a handler
    bool m_runs = false;
    bool m_stop = false;
};

}  // namespace arcsim
