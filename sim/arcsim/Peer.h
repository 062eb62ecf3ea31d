#pragma once

#include "protocol/LineBuffer.h"
#include "protocol/Messages.h"

#include <functional>
#include <memory>
#include <string>

namespace arcsim {

/// The other side of a connection, as a service sees it. Never waits for that side.
class Peer : public std::enable_shared_from_this<Peer>
{
public:
    explicit Peer(unsigned number) : m_number(number) {}
    virtual ~Peer() = default;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    unsigned number() const { return m_number; }
    virtual void send(const Json& message) = 0;
    /// What has been sent still goes out.
    virtual void close() = 0;
    /// Does what the peer has asked for. Whatever that throws ends the connection and is told to the peer; false then.
    bool attempt(const std::function<void()>& action);
    /// Says why and closes.
    void refuse(const std::string& error);

private:
    const unsigned m_number;
};

/// What is done with peers. What is thrown from message() ends the connection and is told to the peer; nothing a peer
/// does reaches other peers. What is done for a peer later goes through Peer::attempt().
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
/// Hands the handler the next line that a peer has sent.
LineTaken takeLine(Peer& peer, LineBuffer& lines, PeerHandler& handler);

}  // namespace arcsim
