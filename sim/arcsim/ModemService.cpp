#include "arcsim/ModemService.h"

#include "host/Controls.h"
#include "modem/Requests.h"
#include "protocol/EventBytes.h"
#include "protocol/Text.h"
#include "protocol/TextsOf.h"
#include "scenario/FaultFile.h"
#include "scenario/JsonNode.h"
#include "support/Printable.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <utility>

namespace arcsim {

namespace {

constexpr std::size_t kLongestName = 64;  // of a client's name; longer ones are cut
constexpr std::size_t kMostCalls = 1000;  // waiting calls of one client

/// Long answers come from many injected faults, clients or forced settings.
void requireRoom(const std::string& control, const Json& answer)
{
    const std::size_t size = lineOf(answer).size() - 1;
    if (size > kLongestLine)
        throw std::runtime_error(control + ": the answer would have " + std::to_string(size) +
                                 " bytes; a line has room for " + std::to_string(kLongestLine));
}

}  // namespace

ModemService::ModemService(asio::io_context& context, Options options)
    : m_options(std::move(options)), m_timers(context), m_host(newHost()),
      m_memory(m_options.memoryFile, m_options.scenarioName)
{
    const auto memory = m_memory.recall();
    if (memory)
        m_host->restore(*memory);
    m_isContinued = memory.has_value();
    remember();
    pump();
}

ModemService::~ModemService()
{
    std::error_code ignored;
    if (!m_options.outputLink.empty())
        std::filesystem::remove(m_options.outputLink, ignored);
    m_memory.forget();
}

std::unique_ptr<ModemHost> ModemService::newHost() const
{
    std::unique_ptr<ModemHost> host = m_options.makeHost();
    if (!m_options.outputLink.empty()) {
        linkOutput(m_options.outputLink, host->modem().rawOutput());
        host->setOutputName(m_options.outputLink);
    }
    return host;
}

void ModemService::message(Peer& peer, const Json& message)
{
    if (message.contains("control"))
        control(peer, message);
    else if (message.contains("hello"))
        hello(peer, message);
    else if (const auto client = m_clients.find(peer.number()); client == m_clients.end())
        throw ProtocolError("a connection begins with hello or control");
    else if (message.contains("call"))
        call(peer, message);
    else if (message.contains("handler") && message["handler"].is_boolean())
        m_host->setHandler(client->second.session, message["handler"].get<bool>());
    else
        throw ProtocolError("unknown message; accepted: hello, call, handler, control");
    pump();
}

void ModemService::hello(Peer& peer, const Json& message)
{
    const Hello hello = helloOf(message);
    if (m_clients.count(peer.number()) != 0)
        throw ProtocolError("a second hello; accepted: one, as the first message of a client");
    if (m_host->isOutage()) {  // a dead daemon says nothing
        peer.close();
        return;
    }
    const std::string name = hello.name.substr(0, kLongestName);
    const ModemHost::SessionId session = m_host->connect({name, hello.pid, hello.isOpen, hello.hasHandler, 0, 0});
    m_clients[peer.number()] = {peer.weak_from_this(), session};
    peer.send({{"hello", "arcsim"}, {"version", "1.0"}, {"protocol", 1}});
}

void ModemService::call(Peer& peer, const Json& message)
{
    const std::int64_t id = idOf(message);
    threadOf(message);
    Request request = requestOf(message);
    const ModemHost::SessionId session = m_clients.at(peer.number()).session;
    if (m_host->sessions().at(session).waiting >= kMostCalls)
        throw ProtocolError("too many calls at a time; accepted: " + std::to_string(kMostCalls));
    const ModemHost::Begun begun = m_host->begin(session, request.function);
    const Call call{peer.weak_from_this(), session, id, std::move(request), begun, 0};
    if (begun.fault.hangs) {
        m_calls[++m_lastCall] = call;
    } else if (m_host->isVirtual() || begun.latency.count() == 0) {
        finish(call);
    } else {
        const std::uint64_t number = ++m_lastCall;
        m_calls[number] = call;
        m_calls[number].timer = m_timers.after(begun.latency, [this, number] { finishLate(number); });
    }
}

void ModemService::finishLate(std::uint64_t number)
{
    const Call call = m_calls.at(number);  // dropping a call cancels its timer
    m_calls.erase(number);
    if (const auto peer = call.peer.lock())
        peer->attempt([&] {
            finish(call);
            pump();
        });
}

void ModemService::finish(const Call& call)
{
    const modem::Reply reply = m_host->finish(call.session, call.request, call.begun);
    remember();  // before anybody can learn the answer
    answer(call, reply);
}

void ModemService::dropCalls(ModemHost::SessionId session)
{
    for (auto call = m_calls.begin(); call != m_calls.end();) {
        if (call->second.session == session) {
            m_timers.cancel(call->second.timer);
            call = m_calls.erase(call);
        } else {
            ++call;
        }
    }
}

void ModemService::answer(const Call& call, const modem::Reply& reply)
{
    if (m_options.tellsCalls) {
        const auto& name = m_host->sessions().at(call.session).name;
        std::fprintf(stderr, "%10lld ms  %s: %s%s -> %d %s\n", static_cast<long long>(m_host->now().count()),
                     support::printable(name).c_str(),
                     std::string(modem::kRequests[indexOf(call.request.function)].name).c_str(),
                     argumentsOf(call.request).dump(-1, ' ', true).c_str(), reply.code,
                     outputsOf(call.request.function, reply).dump(-1, ' ', true).c_str());
    }
    if (const auto peer = call.peer.lock())
        peer->send(answerMessage(call.id, call.request.function, reply));
}

void ModemService::left(Peer& peer)
{
    const auto client = m_clients.find(peer.number());
    if (client == m_clients.end())
        return;
    const ModemHost::SessionId session = client->second.session;
    m_clients.erase(client);
    dropCalls(session);
    m_host->disconnect(session);
    remember();
    pump();
}

void ModemService::control(Peer& peer, const Json& message)
{
    const std::int64_t id = idOf(message);
    try {
        auto plain = withBytes(message);
        const auto& name = plain.at("control");
        const std::string control = name.is_string() ? name.get<std::string>() : message["control"].dump();
        plain.erase("id");
        plain.erase("control");
        Json result = Json::object();
        if (control == "clear")
            result = clear(plain);
        else if (control == "reset")
            result = reset(peer, plain);
        else if (control == "stop")
            requireStop(plain);
        else
            result = arcsim::control(*m_host, control, plain);
        if (control == "status") {
            const auto hangs = [](const auto& each) { return each.second.begun.fault.hangs; };
            result["hanging"] = std::count_if(m_calls.begin(), m_calls.end(), hangs);
        }
        const Json answer = {{"id", id}, {"ok", true}, {"result", withCharacters(result)}};
        remember();
        requireRoom(control, answer);
        peer.send(answer);
        if (control == "stop")
            m_options.onStop();
    } catch (const std::exception& error) {
        peer.send({{"id", id}, {"ok", false}, {"error", charactersOf(error.what())}});
    }
}

void ModemService::requireStop(const nlohmann::json& message) const
{
    JsonNode("stop", message).requireKeys({});
    if (!m_options.onStop)
        throw std::runtime_error("stop: not possible; the modem of 'arcsim run' ends with the program");
}

Json ModemService::clear(const nlohmann::json& message)
{
    std::optional<std::size_t> request;
    const JsonNode node("clear", message);
    node.requireKeys({"function"});
    if (const auto function = node.find("function"))
        request = readRequest(*function);
    const unsigned dropped = m_host->dropFaults(request);
    return {{"dropped", dropped}, {"released", release(request)}};
}

unsigned ModemService::release(std::optional<std::size_t> request)
{
    unsigned released = 0;
    for (auto each = m_calls.begin(); each != m_calls.end();) {
        const Call& call = each->second;
        if (!call.begun.fault.hangs || (request && indexOf(call.request.function) != *request)) {
            ++each;
            continue;
        }
        m_host->abandon(call.session);
        answer(call, modem::answer(modem::kGenericError));
        each = m_calls.erase(each);
        ++released;
    }
    return released;
}

/// To applications the modem seems to restart: their library loses its connection and reconnects. The client that asks
/// for the reset, a test, stays connected, and its pending calls go on.
Json ModemService::reset(Peer& peer, const nlohmann::json& message)
{
    const JsonNode node("reset", message);
    node.requireKeys({"latencies"});
    const auto latencies = node.find("latencies");
    const bool hasLatencies = !latencies || latencies->flag();
    std::unique_ptr<ModemHost> host = newHost();  // throws before anything has changed
    release(std::nullopt);
    cutClients(peer.number());
    const std::map<ModemHost::SessionId, ModemHost::Session> sessions = m_host->sessions();
    m_host = std::move(host);
    if (!hasLatencies)
        m_host->setRealisticLatency(false);
    for (auto& [number, client] : m_clients) {
        const ModemHost::Session& old = sessions.at(client.session);
        client.session = m_host->connect({old.name, old.pid, false, false, 0, old.waiting});
        for (auto& [each, call] : m_calls)  // answered by the new modem when their time comes
            call.session = client.session;
    }
    return Json::object();
}

void ModemService::pump()
{
    if (m_host->isOutage())
        cutClients();
    for (const modem::Modem::Event& event : m_host->takeEvents()) {
        const Json message = eventMessage({event.id, event.lsta ? bytesOf(*event.lsta) : event.payload});
        for (const auto& [number, client] : m_clients) {
            const ModemHost::Session& session = m_host->sessions().at(client.session);
            const auto peer = client.peer.lock();
            if (peer && session.isOpen && session.hasHandler)
                peer->send(message);
        }
    }
    m_timers.cancel(std::exchange(m_nextLook, 0));
    if (const auto next = m_host->nextLook())
        m_nextLook = m_timers.at(*next, [this] { pump(); });
}

void ModemService::cutClients(std::optional<unsigned> butNumber)
{
    for (auto each = m_clients.begin(); each != m_clients.end();) {
        const auto [number, client] = *each;
        if (number == butNumber) {
            ++each;
            continue;
        }
        each = m_clients.erase(each);
        dropCalls(client.session);
        m_host->cutOff(client.session);
        if (const auto peer = client.peer.lock())
            peer->close();
    }
}

void ModemService::remember()
{
    m_memory.keep(m_host->memory());
}

}  // namespace arcsim
