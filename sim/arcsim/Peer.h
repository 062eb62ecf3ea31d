#pragma once

#include "protocol/LineBuffer.h"
#include "protocol/Messages.h"

#include <functional>
#include <memory>
#include <string>

namespace arcsim {

/// The other side of a connection, as a service sees it. No function waits for that side.
class Peer : public std::enable_shared_from_this<Peer>
{
public:
    explicit Peer(unsigned number) : m_number(number) {}
    virtual ~Peer() = default;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    unsigned number() const { return m_number; }
    virtual void send(const Json& message) = 0;
    /// Bytes already queued are still sent.
    virtual void close() = 0;
    /// Runs an action that the peer has asked for. If it throws, the peer is told why, the connection ends, and the
    /// result is false.
    bool attempt(const std::function<void()>& action);
    /// Tells the peer the reason and closes.
    void refuse(const std::string& error);

private:
    const unsigned m_number;
};

/// Handles what peers send. An exception from message() is told to the peer and ends its connection only, never those
/// of other peers. Actions that run later for a peer go through Peer::attempt().
class PeerHandler
{
public:
    virtual ~PeerHandler() = default;
    virtual void message(Peer& peer, const Json& message) = 0;
    virtual void left(Peer& peer) = 0;
};

enum class LineTaken
{
    none,  ///< the next line is not complete
    accepted,
    refused,  ///< the peer is closing
};
/// Passes the next line that a peer has sent to the handler.
LineTaken takeLine(Peer& peer, LineBuffer& lines, PeerHandler& handler);

}  // namespace arcsim
