#pragma once

// A daemon with three peers in one thread of one process: what its peers send arrives through sockets, time is virtual.

#include "arcsim/LineServer.h"
#include "arcsim/ModemService.h"
#include "arcsim/ReplayService.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace fuzz {

/// The daemon's server outlives every service; each input gets services of its own, the modem's or a replay's.
class Daemon : private arcsim::PeerHandler
{
public:
    static constexpr std::size_t kPeers = 3;

    Daemon();
    ~Daemon() override;
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    enum class Service
    {
        modem,
        replay,
    };
    void begin(Service service);
    /// Every peer is gone, the service too.
    void end();

    /// The daemon has worked on all of it when this returns, and all that it had to say was what its peers understand.
    void say(std::size_t peer, std::string_view bytes);
    void hangUp(std::size_t peer);

private:
    struct Client
    {
        std::optional<asio::local::stream_protocol::socket> socket{};
        arcsim::LineBuffer heard{};
    };

    void message(arcsim::Peer& peer, const arcsim::Json& message) override;
    void left(arcsim::Peer& peer) override;
    void settle();
    bool hear(Client& client);

    const std::string m_path;
    asio::io_context m_context{1};
    arcsim::LineServer m_server;
    std::unique_ptr<arcsim::PeerHandler> m_service{};
    std::array<Client, kPeers> m_clients{};
};

}  // namespace fuzz
