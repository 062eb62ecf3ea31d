#include "arcsim/ReplayService.h"

#include "modem/Requests.h"
#include "modem/ResultCode.h"
#include "protocol/Text.h"

namespace arcsim {

namespace {

constexpr unsigned kMostCalls = 1000;  // waiting calls of one client

}  // namespace

ReplayService::ReplayService(asio::io_context& context, Recording recording, Options options)
    : m_options(std::move(options)), m_book(std::move(recording)), m_output(m_options.receiver, ReceiverSettings{}),
      m_timers(context)
{
    sendEvents();
}

void ReplayService::message(Peer& peer, const Json& message)
{
    if (message.contains("control"))
        control(peer, message);
    else if (message.contains("hello"))
        hello(peer, message);
    else if (m_clients.count(peer.number()) == 0)
        throw ProtocolError("a connection begins with hello or control");
    else if (message.contains("call"))
        call(peer, message);
    else if (!message.contains("handler") || !message["handler"].is_boolean())
        throw ProtocolError("unknown message; accepted: hello, call, handler, control");
}

void ReplayService::hello(Peer& peer, const Json& message)
{
    helloOf(message);
    if (!m_clients.emplace(peer.number(), Client{peer.weak_from_this(), 0}).second)
        throw ProtocolError("a second hello; accepted: one, as the first message of a client");
    peer.send({{"hello", "arcsim"}, {"version", "1.0"}, {"protocol", 1}});
}

void ReplayService::control(Peer& peer, const Json& message)
{
    const std::int64_t id = idOf(message);
    std::string error;
    if (message["control"] != "stop")
        error = "a replay knows the control stop only";
    for (const auto& [key, value] : message.items())
        if (error.empty() && key != "id" && key != "control")
            error = "stop: " + key + ": unknown key; accepted: none";
    if (!error.empty()) {
        peer.send({{"id", id}, {"ok", false}, {"error", error}});
        return;
    }
    peer.send({{"id", id}, {"ok", true}, {"result", Json::object()}});
    if (m_options.onStop)
        m_options.onStop();
}

void ReplayService::call(Peer& peer, const Json& message)
{
    const std::int64_t id = idOf(message);
    const ReplayBook::ThreadId thread = std::uint64_t{peer.number()} << 32U | static_cast<unsigned>(threadOf(message));
    const Request request = requestOf(message);
    Client& client = m_clients.at(peer.number());
    if (client.waiting >= kMostCalls)
        throw ProtocolError("too many calls at a time; accepted: " + std::to_string(kMostCalls));
    const std::string name(modem::kRequests[indexOf(request.function)].name);
    const ReplayBook::Answer found = m_book.next(thread, name, argumentsOf(request));
    sendEvents();
    if (found.hangs)
        return;
    ++client.waiting;
    const auto latency = m_options.fast ? std::chrono::microseconds(0) : found.took;
    m_timers.after(latency, [this, weak = peer.weak_from_this(), id, function = request.function, found] {
        const auto still = weak.lock();
        const auto asker = still ? m_clients.find(still->number()) : m_clients.end();
        if (asker == m_clients.end())
            return;
        --asker->second.waiting;
        still->attempt([&] { answer(*still, id, function, found); });
    });
}

void ReplayService::answer(Peer& peer, std::int64_t id, Function function, const ReplayBook::Answer& answer)
{
    follow(function, answer.code);
    ++m_answered;
    const bool hasNoText = function == Function::GetArcVersion && answer.outputs.value("version", Json()).is_null();
    peer.send({{"id", id},
               {"code", hasNoText && answer.code == modem::kSuccess ? modem::kGenericError : answer.code},
               {"out", outputsFor(function, answer)}});
    m_book.answered(answer.number);
    sendEvents();
}

Json ReplayService::outputsFor(Function function, const ReplayBook::Answer& answer) const
{
    Json outputs = answer.outputs;
    if (function == Function::StartGNSSraw && outputs.contains("text"))
        outputs["text"] = charactersOf(m_output.path());
    if (outputs.contains("version") && outputs["version"].is_null())
        outputs.erase("version");
    return outputs;
}

void ReplayService::follow(Function function, int code)
{
    if (code != modem::kSuccess)
        return;
    if (function == Function::StartGNSSraw)
        m_output.start();
    else if (function == Function::StopGNSS || function == Function::ForceStopGNSS || function == Function::Close)
        m_output.stop();
}

void ReplayService::sendEvents()
{
    for (const ReplayBook::DueEvent& due : m_book.dueEvents()) {
        const auto delay = m_options.fast ? std::chrono::microseconds(0) : due.delay;
        m_timers.after(delay, [this, index = due.index] {
            const RecordedEvent& event = m_book.recording().events[index];
            const Json message = eventMessage({event.id, event.data.value_or(std::vector<unsigned char>())});
            for (const auto& [number, client] : m_clients)
                if (const auto peer = client.peer.lock())
                    peer->send(message);
        });
    }
}

void ReplayService::left(Peer& peer)
{
    if (m_clients.erase(peer.number()) == 0 || !m_clients.empty())
        return;
    if (m_answered >= m_book.recording().calls.size() && m_options.onStop)
        m_options.onStop();
}

}  // namespace arcsim
