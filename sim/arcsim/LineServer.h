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

/// Serves a Unix socket that only the user of this process may use: one JSON object per line in both directions.
class LineServer
{
public:
    /// A peer that reads so slowly that more than this many bytes wait for it is disconnected.
    static constexpr std::size_t kMostUnsent = 32UL << 20U;
    static constexpr std::size_t kMostPeers = 256;

    /// Replaces a socket that a dead process has left. Throws std::runtime_error when another process serves this path
    /// or the socket cannot be created.
    LineServer(asio::io_context& context, const std::string& path);
    ~LineServer();
    LineServer(const LineServer&) = delete;
    LineServer& operator=(const LineServer&) = delete;

    /// Accepts peers for `handler`, which must outlive the run of the context.
    void start(PeerHandler& handler);
    /// Stops accepting peers and removes the socket.
    void stop();
    /// Calls `action` when everything has been sent, or after 1 s if a peer does not read.
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
    Timers::Number m_pause = 0;  ///< timer until peers are accepted again after descriptors ran out
    std::map<unsigned, std::shared_ptr<Connection>> m_peers{};
    unsigned m_lastNumber = 0;
    std::function<void()> m_whenSent{};  ///< set only while somebody waits for this
};

}  // namespace arcsim
