#pragma once

#include "arcsim/Memory.h"
#include "arcsim/Peer.h"
#include "arcsim/Timers.h"
#include "host/ModemHost.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace arcsim {

/// Serves the simulated modem to many applications and controls at once.
class ModemService : public PeerHandler
{
public:
    struct Options
    {
        std::function<std::unique_ptr<ModemHost>()> makeHost{};  ///< for the start and every reset
        std::string outputLink{};        ///< a link with a fixed name to the raw output's terminal; empty: none
        std::string scenarioName{};      ///< the memory of another scenario is ignored
        std::string memoryFile{};        ///< keeps the state for the next process if this one is killed; empty: none
        bool tellsCalls = false;         ///< prints one line per call on standard error
        std::function<void()> onStop{};  ///< called when a client asks to stop; empty: such requests are refused
    };

    /// Throws std::runtime_error when the scenario cannot be simulated.
    ModemService(asio::io_context& context, Options options);
    ~ModemService() override;
    ModemService(const ModemService&) = delete;
    ModemService& operator=(const ModemService&) = delete;

    void message(Peer& peer, const Json& message) override;
    void left(Peer& peer) override;

    /// A memory file was found, as after a killed process.
    bool isContinued() const { return m_isContinued; }
    const std::string& outputName() const { return m_host->modem().rawOutput(); }

private:
    /// A call that has begun and has not been answered yet.
    struct Call
    {
        std::weak_ptr<Peer> peer{};
        ModemHost::SessionId session = 0;
        std::int64_t id = 0;
        Request request{};
        ModemHost::Begun begun{};
        Timers::Number timer = 0;  ///< unset for a call that hangs
    };
    struct Client
    {
        std::weak_ptr<Peer> peer{};
        ModemHost::SessionId session = 0;
    };

    std::unique_ptr<ModemHost> newHost() const;
    void hello(Peer& peer, const Json& message);
    void call(Peer& peer, const Json& message);
    void finishLate(std::uint64_t number);
    void finish(const Call& call);
    void dropCalls(ModemHost::SessionId session);
    void answer(const Call& call, const modem::Reply& reply);
    void control(Peer& peer, const Json& message);
    void requireStop(const nlohmann::json& message) const;
    Json clear(const nlohmann::json& message);
    Json reset(Peer& peer, const nlohmann::json& message);
    unsigned release(std::optional<std::size_t> request);
    void pump();
    void cutClients(std::optional<unsigned> butNumber = std::nullopt);
    void remember();

    const Options m_options;
    Timers m_timers;
    std::unique_ptr<ModemHost> m_host;  ///< never null
    Timers::Number m_nextLook = 0;
    std::map<unsigned, Client> m_clients{};   ///< by the peer's number
    std::map<std::uint64_t, Call> m_calls{};  ///< in the order in which they began
    std::uint64_t m_lastCall = 0;
    MemoryKeeper m_memory;
    bool m_isContinued = false;
};

}  // namespace arcsim
