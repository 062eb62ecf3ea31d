#pragma once

#include "arcsim/Peer.h"
#include "arcsim/ReplayBook.h"
#include "arcsim/Timers.h"
#include "receiver/Feed.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace arcsim {

/// Answers an application from a recording, in the recorded time or at once, and delivers the recorded events.
///
/// A new terminal replaces the recorded path of raw output, which no longer exists. From a successful start to the next
/// stop or close, it carries the simulated receiver's output or a recording of sentences.
class ReplayService : public PeerHandler
{
public:
    struct Options
    {
        bool fast = false;  ///< no recorded time is waited for
        ReceiverScenario receiver{};
        std::function<void()>
            onStop{};  ///< called when a client asks to stop, or when the application has made all calls and left
    };

    /// Throws std::runtime_error when raw output cannot be created.
    ReplayService(asio::io_context& context, Recording recording, Options options);

    void message(Peer& peer, const Json& message) override;
    void left(Peer& peer) override;

    ReplayBook& book() { return m_book; }
    unsigned answered() const { return m_answered; }

private:
    struct Client
    {
        std::weak_ptr<Peer> peer{};
        unsigned waiting = 0;  ///< calls that will be answered
    };

    void hello(Peer& peer, const Json& message);
    void control(Peer& peer, const Json& message);
    void call(Peer& peer, const Json& message);
    void answer(Peer& peer, std::int64_t id, Function function, const ReplayBook::Answer& answer);
    void sendEvents();
    Json outputsFor(Function function, const ReplayBook::Answer& answer) const;
    void follow(Function function, int code);

    const Options m_options;
    ReplayBook m_book;
    Feed m_output;
    std::map<unsigned, Client> m_clients{};  ///< by the peer's number
    Timers m_timers;
    unsigned m_answered = 0;
};

}  // namespace arcsim
