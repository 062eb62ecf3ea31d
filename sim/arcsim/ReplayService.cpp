#include "arcsim/ReplayService.h"

#include "modem/Requests.h"
#include "modem/ResultCode.h"
#include "protocol/Text.h"

namespace arcsim {

ReplayService::ReplayService(asio::io_context& context, Recording recording, Options options)
    : m_context(context), m_options(std::move(options)), m_book(std::move(recording)),
      m_output(m_options.receiver, ReceiverSettings{})
{
    sendEvents();
}

void ReplayService::message(Peer& peer, const Json& message)
{
    if (message.contains("hello")) {
        helloOf(message);
        m_clients[peer.number()] = peer.weak_from_this();
        peer.send({{"hello", "arcsim"}, {"version", "1.0"}, {"protocol", 1}});
    } else if (message.contains("control")) {
        const bool stops = message["control"] == "stop";
        if (stops)
            peer.send({{"id", idOf(message)}, {"ok", true}, {"result", Json::object()}});
        else
            peer.send({{"id", idOf(message)}, {"ok", false}, {"error", "a replay knows the control stop only"}});
        if (stops && m_options.onStop)
            m_options.onStop();
    } else if (message.contains("call")) {
        call(peer, message);
    } else if (!message.contains("handler")) {
        throw ProtocolError("unknown message; accepted: hello, call, handler, control");
    }
}

void ReplayService::call(Peer& peer, const Json& message)
{
    const std::int64_t id = idOf(message);
    const Request request = requestOf(message);
    const int given = message.value("thread", 0);
    const int thread = m_threads.emplace(std::pair(peer.number(), given), m_threads.size() + 1).first->second;
    const std::string name(modem::kRequests[indexOf(request.function)].name);
    const ReplayBook::Answer found = m_book.next(thread, name, argumentsOf(request));
    sendEvents();
    if (found.hangs)
        return;
    const auto latency = m_options.fast ? std::chrono::microseconds(0) : found.took;
    after(latency, [this, weak = peer.weak_from_this(), id, function = request.function, found] {
        if (const auto still = weak.lock())
            answer(*still, id, function, found);
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
        after(delay, [this, index = due.index] {
            const RecordedEvent& event = m_book.recording().events[index];
            const Json message = eventMessage({event.id, event.data.value_or(std::vector<unsigned char>())});
            for (const auto& [number, client] : m_clients)
                if (const auto peer = client.lock())
                    peer->send(message);
        });
    }
}

void ReplayService::after(std::chrono::microseconds delay, std::function<void()> action)
{
    m_later.emplace_back(m_context);
    const auto later = std::prev(m_later.end());
    later->timer.expires_after(delay);
    later->timer.async_wait([this, later, action = std::move(action)](const asio::error_code& error) {
        if (error)
            return;
        action();
        m_later.erase(later);
    });
}

void ReplayService::left(Peer& peer)
{
    if (m_clients.erase(peer.number()) == 0 || !m_clients.empty())
        return;
    if (m_answered >= m_book.recording().calls.size() && m_options.onStop)
        m_options.onStop();
}

}  // namespace arcsim
