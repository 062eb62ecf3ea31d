#pragma once

#include "arcsim/Peer.h"
#include "arcsim/Timers.h"

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace arcsim {

/// Serves a Unix socket that only the user of this process may use: one JSON object a line in both directions.
class LineServer
{
public:
    /// A side that takes so little that more bytes wait for it is cut off.
    static constexpr std::size_t kMostUnsent = 32UL << 20U;
    static constexpr std::size_t kMostPeers = 256;

    /// A socket that a dead process has left behind is replaced. Throws std::runtime_error when another process serves
    /// there and when there can be no socket.
    LineServer(asio::io_context& context, const std::string& path);
    ~LineServer();
    LineServer(const LineServer&) = delete;
    LineServer& operator=(const LineServer&) = delete;

    /// Takes peers for `handler`, which outlives the run of the context.
    void start(PeerHandler& handler);
    /// Takes no new peers and takes the socket away.
    void stop();
    /// Calls `action` when everything has been sent, or after a second: a peer that reads nothing is waited for no
    /// longer.
    void whenSent(std::function<void()> action);

private:
    class Connection;
    void accept();
    void remove(Connection& connection);
    void lookWhetherAllIsSent();

    const std::string m_path;
    PeerHandler* m_handler = nullptr;
    asio::local::stream_protocol::acceptor m_acceptor;
    Timers m_timers;
    Timers::Number m_pause = 0;  ///< until peers are accepted again, when there was no descriptor left for one
    std::map<unsigned, std::shared_ptr<Connection>> m_peers{};
    unsigned m_lastNumber = 0;
    std::function<void()> m_whenSent{};  ///< empty but while somebody waits for that
};

}  // namespace arcsim
