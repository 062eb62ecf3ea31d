// Whatever the bytes that peers send to a daemon, and a daemon to its clients: an answer or a ProtocolError, in good
// time. Any other exception ends the run.
//
// An input is what peers of one daemon send, line by line as on the socket. Bytes that no JSON holds are signs:
//   1C c n  the byte c, 256 * n times
//   1D      what has been sent so far arrives before the rest
//   1E      what follows is from the next of the peers
//   1F      the peer hangs up; it connects again when it says more

#include "fuzz/Daemon.h"
#include "fuzz/Finding.h"
#include "protocol/Messages.h"

#include <cstdint>

namespace {

using arcsim::Json;
using arcsim::ProtocolError;

/// What a message means to either side, if it means anything.
void interpret(const Json& message)
{
    const auto tried = [](const auto& read) {
        try {
            read();
        } catch (const ProtocolError& error) {
            if (std::string(error.what()).empty())
                fuzz::finding("a refusal without a word");
        }
    };
    tried([&] { arcsim::idOf(message); });
    tried([&] {
        if (message.contains("hello"))
            arcsim::helloOf(arcsim::helloMessage(arcsim::helloOf(message)));
    });
    tried([&] { arcsim::eventOf(arcsim::eventMessage(arcsim::eventOf(message))); });
    tried([&] {
        const arcsim::Request request = arcsim::requestOf(message);
        const Json written = arcsim::callMessage(1, request, 1);
        if (arcsim::argumentsOf(arcsim::requestOf(arcsim::messageOf(arcsim::lineOf(written)))) != written.at("args"))
            fuzz::finding("a call is not read as it was written");
    });
    for (std::size_t i = 0; i < arcsim::kFunctions; ++i)
        tried([&] {
            const auto function = static_cast<arcsim::Function>(i);
            const Json written = arcsim::answerMessage(1, function, arcsim::replyOf(function, message));
            const auto reply = arcsim::replyOf(function, arcsim::messageOf(arcsim::lineOf(written)));
            if (arcsim::lineOf(arcsim::answerMessage(1, function, reply)) != arcsim::lineOf(written))
                fuzz::finding("an answer is not read as it was written");
        });
}

constexpr int kMostLines = 1000;  // more only take more time

void interpretLines(std::string_view bytes)
{
    arcsim::LineBuffer lines;
    lines.add(bytes);
    for (int i = 0; i < kMostLines; ++i) {
        const auto line = lines.take();
        if (!line || line->size() > arcsim::kLongestLine)
            return;
        try {
            interpret(arcsim::messageOf(*line));
        } catch (const ProtocolError&) {
        }
    }
}

class Conversation
{
public:
    Conversation(fuzz::Daemon& daemon, fuzz::Daemon::Service service) : m_daemon(daemon) { m_daemon.begin(service); }
    ~Conversation() { m_daemon.end(); }
    Conversation(const Conversation&) = delete;
    Conversation& operator=(const Conversation&) = delete;

    void add(char byte, std::size_t times) { m_said.append(times, byte); }
    void send()
    {
        m_daemon.say(m_peer, m_said);
        interpretLines(m_said);
        m_said.clear();
    }
    void change()
    {
        send();
        m_peer = (m_peer + 1) % fuzz::Daemon::kPeers;
    }
    void hangUp()
    {
        send();
        m_daemon.hangUp(m_peer);
    }

private:
    fuzz::Daemon& m_daemon;
    std::size_t m_peer = 0;
    std::string m_said{};
};

void converse(fuzz::Daemon& daemon, fuzz::Daemon::Service service, const std::uint8_t* data, std::size_t size)
{
    Conversation conversation(daemon, service);
    for (std::size_t i = 0; i < size; ++i) {
        const auto byte = static_cast<char>(data[i]);
        if (byte == 0x1C && i + 2 < size) {
            conversation.add(static_cast<char>(data[i + 1]), 256U * data[i + 2]);
            i += 2;
        } else if (byte == 0x1D) {
            conversation.send();
        } else if (byte == 0x1E) {
            conversation.change();
        } else if (byte == 0x1F) {
            conversation.hangUp();
        } else {
            conversation.add(byte, 1);
        }
    }
    conversation.send();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static auto* const daemon = new fuzz::Daemon;
    static const bool isTidied = std::atexit([] { delete daemon; }) == 0;
    if (!isTidied)
        return 0;
    for (const auto service : {fuzz::Daemon::Service::modem, fuzz::Daemon::Service::replay})
        converse(*daemon, service, data, size);
    return 0;
}
