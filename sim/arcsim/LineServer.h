#pragma once

#include "arcsim/Timers.h"
#include "protocol/LineBuffer.h"
#include "protocol/Messages.h"

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>

#include <array>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace arcsim {

class LineServer;

/// One connection of a LineServer. Never waits for the other side.
class Peer : public std::enable_shared_from_this<Peer>
{
public:
    Peer(LineServer& server, asio::local::stream_protocol::socket socket, unsigned number);

    unsigned number() const { return m_number; }
    /// A side that takes so little that kMostUnsent bytes wait for it is cut off.
    void send(const Json& message);
    /// Does what the peer has asked for. Whatever that throws ends the connection and is told to the peer; false then.
    bool attempt(const std::function<void()>& action);
    /// Says why and closes.
    void refuse(const std::string& error);
    /// What has been sent still goes out.
    void close();

private:
    friend class LineServer;
    void receive();
    void takeLine();
    void write();
    void end();

    LineServer* m_server;  ///< null once the server is gone
    asio::local::stream_protocol::socket m_socket;
    const unsigned m_number;
    std::array<char, 16384> m_buffer{};
    LineBuffer m_lines{};
    std::deque<std::string> m_unsent{};
    std::size_t m_unsentBytes = 0;
    bool m_isClosing = false;
};

/// What a LineServer's owner does with its peers. What is thrown from message() ends the connection and is told to the
/// peer; nothing a peer does reaches other peers. What the owner does for a peer later goes through Peer::attempt().
class PeerHandler
{
public:
    virtual ~PeerHandler() = default;
    virtual void message(Peer& peer, const Json& message) = 0;
    virtual void left(Peer& peer) = 0;
};

/// Serves a Unix socket that only the user of this process may use: one JSON object a line in both directions.
class LineServer
{
public:
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

private:
    friend class Peer;
    void accept();
    void remove(Peer& peer);

    const std::string m_path;
    PeerHandler* m_handler = nullptr;
    asio::local::stream_protocol::acceptor m_acceptor;
    Timers m_timers;
    Timers::Number m_pause = 0;  ///< until peers are accepted again, when there was no descriptor left for one
    std::map<unsigned, std::shared_ptr<Peer>> m_peers{};
    unsigned m_lastNumber = 0;
};

}  // namespace arcsim
