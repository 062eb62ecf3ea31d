#pragma once

// The peers of one service, in its own thread and without sockets.

#include "arcsim/Peer.h"

#include <array>
#include <memory>
#include <string_view>

namespace fuzz {

/// What a peer says is with the service when say() returns, and what the service answers is looked at: it has to be a
/// line that clients understand, and the answer to something that was asked.
class Peers : private arcsim::PeerHandler
{
public:
    static constexpr std::size_t kCount = 3;

    explicit Peers(arcsim::PeerHandler& service) : m_service(service) {}
    ~Peers() override;
    Peers(const Peers&) = delete;
    Peers& operator=(const Peers&) = delete;

    /// Connects a peer that is not there.
    void say(std::size_t peer, std::string_view bytes);
    void hangUp(std::size_t peer);
    /// Those that the service has closed leave.
    void settle();
    /// Every peer that is still connected has had one answer to each of its calls and controls.
    void requireAnswers() const;

private:
    class Client;

    void message(arcsim::Peer& peer, const arcsim::Json& message) override;
    void left(arcsim::Peer& peer) override;

    arcsim::PeerHandler& m_service;
    std::array<std::shared_ptr<Client>, kCount> m_clients{};
    unsigned m_lastNumber = 0;
};

}  // namespace fuzz
