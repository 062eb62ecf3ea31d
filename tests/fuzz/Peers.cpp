#include "fuzz/Peers.h"

#include "fuzz/Finding.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace fuzz {

namespace {

using arcsim::Json;

/// A day of virtual time and a hundred thousand events are accepted and take what they take; here they would only keep
/// other inputs from being tried.
bool takesLong(const Json& value, const std::string& key = {})
{
    constexpr double kMostMs = 1000;
    constexpr double kMostEvents = 100;
    constexpr double kDayMs = 86400000;  // more is refused
    if (value.is_number()) {
        const auto number = value.get<double>();
        const bool isTime = key == "ms" || key == "min" || key == "max" || key == "mean" || key == "deviation" ||
                            (key.size() > 2 && key.compare(key.size() - 2, 2, "Ms") == 0);
        return (isTime && number > kMostMs && number <= kDayMs) || (key == "count" && number > kMostEvents);
    }
    if (value.is_object())
        for (const auto& [each, member] : value.items())
            if ((member.is_number() || member.is_object()) && takesLong(member, each))
                return true;
    return false;
}

/// Of a call the function, nothing of a control.
using Asked = std::optional<arcsim::Function>;

bool isControl(const Json& message)
{
    return message.contains("control");
}

bool isCall(const Json& message)
{
    return message.contains("call") && !message.contains("hello") && !isControl(message);
}

/// A control is refused by us, and not by what a library throws.
void requireReason(const std::string& error)
{
    for (const char* const known : {"accepted: ", "has room for", "not possible", "a replay knows"})
        if (error.find(known) != std::string::npos)
            return;
    finding("a control fails: " + error);
}

}  // namespace

class Peers::Client : public arcsim::Peer
{
public:
    using Peer::Peer;

    void send(const Json& message) override
    {
        if (m_isClosing)
            return;
        const std::string line = arcsim::lineOf(message);
        if (line.size() > arcsim::kLongestLine + 1 || line.find('\n') != line.size() - 1)
            finding("the service sends what is no line: " + std::to_string(line.size()) + " bytes");
        if (message.contains("event"))
            arcsim::eventOf(message);
        else if (message.contains("id"))
            takeAnswer(message);
        else if (!message.contains("hello") && !message.contains("error"))
            finding("the service says what nobody understands: " + line);
    }
    void close() override { m_isClosing = true; }
    void ask(std::int64_t id, Asked asked) { m_unanswered.emplace(id, asked); }

    bool isClosing() const { return m_isClosing; }
    bool hasAllAnswers() const { return m_unanswered.empty(); }
    arcsim::LineBuffer lines{};

private:
    /// As the client library does, or the one who asked for a control.
    void takeAnswer(const Json& answer)
    {
        const auto [begin, end] = m_unanswered.equal_range(arcsim::idOf(answer));
        const auto asked = std::find_if(
            begin, end, [&](const auto& each) { return each.second.has_value() == answer.contains("code"); });
        if (asked == end)
            finding("an answer that nobody asked for: " + answer.dump());
        if (asked->second)
            arcsim::replyOf(*asked->second, answer);
        else if (answer.contains("error"))
            requireReason(answer["error"]);
        m_unanswered.erase(asked);
    }

    std::multimap<std::int64_t, Asked> m_unanswered{};
    bool m_isClosing = false;
};

Peers::~Peers()
{
    for (std::size_t peer = 0; peer < kCount; ++peer)
        hangUp(peer);
}

void Peers::say(std::size_t peer, std::string_view bytes)
{
    if (bytes.empty())
        return;
    if (!m_clients[peer])
        m_clients[peer] = std::make_shared<Client>(++m_lastNumber);
    const std::shared_ptr<Client> client = m_clients[peer];
    if (!client->isClosing())
        client->lines.add(bytes);
    while (!client->isClosing()) {
        const arcsim::LineTaken taken = arcsim::takeLine(*client, client->lines, *this);
        if (taken == arcsim::LineTaken::none)
            return;
        if (taken == arcsim::LineTaken::refused && !client->isClosing())
            finding("a peer that was refused stays");
    }
}

void Peers::hangUp(std::size_t peer)
{
    if (const std::shared_ptr<Client> client = std::exchange(m_clients[peer], nullptr))
        left(*client);
}

void Peers::settle()
{
    for (std::size_t peer = 0; peer < kCount; ++peer)
        if (m_clients[peer] && m_clients[peer]->isClosing())
            hangUp(peer);
}

void Peers::requireAnswers() const
{
    for (const auto& client : m_clients)
        if (client && !client->isClosing() && !client->hasAllAnswers())
            finding("a call or a control was never answered");
}

void Peers::message(arcsim::Peer& peer, const Json& message)
{
    if (takesLong(message))
        return;
    auto& client = static_cast<Client&>(peer);
    if (isControl(message))
        client.ask(arcsim::idOf(message), std::nullopt);
    else if (isCall(message))
        client.ask(arcsim::idOf(message), arcsim::requestOf(message).function);
    try {
        m_service.message(peer, message);
    } catch (const arcsim::ProtocolError& error) {
        if (std::string(error.what()).empty())
            finding("a refusal without a word");
        throw;
    } catch (const std::exception& error) {  // the peer would only be told
        finding(std::string("neither an answer nor a refusal: ") + error.what());
    }
}

void Peers::left(arcsim::Peer& peer)
{
    m_service.left(peer);
}

}  // namespace fuzz
