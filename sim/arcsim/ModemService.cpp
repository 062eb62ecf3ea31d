#include "arcsim/ModemService.h"

#include "arcsim/Memory.h"
#include "host/Controls.h"
#include "modem/Requests.h"
#include "protocol/EventBytes.h"
#include "protocol/Text.h"
#include "protocol/TextsOf.h"
#include "scenario/FaultFile.h"
#include "scenario/JsonNode.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace arcsim {

namespace {

constexpr std::size_t kLongestName = 64;  // of a client; what is longer is cut
constexpr std::size_t kMostCalls = 1000;  // of one client, waiting at one time

/// Many injected faults, clients or forced settings make long answers.
void requireRoom(const std::string& control, const Json& answer)
{
    const std::size_t size = lineOf(answer).size() - 1;
    if (size > kLongestLine)
        throw std::runtime_error(control + ": the answer would have " + std::to_string(size) +
                                 " bytes; a line has room for " + std::to_string(kLongestLine));
}

}  // namespace

ModemService::ModemService(asio::io_context& context, Options options)
    : m_context(context), m_options(std::move(options)), m_nextLook(context)
{
    prepare();
    if (const auto memory = readMemory(m_options.memoryFile, m_options.scenarioName)) {
        m_host->restore(*memory);
        m_isContinued = true;
    }
    remember();
    pump();
}

ModemService::~ModemService()
{
    std::error_code ignored;
    if (!m_options.outputLink.empty())
        std::filesystem::remove(m_options.outputLink, ignored);
    if (!m_options.memoryFile.empty())
        std::filesystem::remove(m_options.memoryFile, ignored);
}

void ModemService::prepare()
{
    m_host = m_options.makeHost();  // throws before the old one is gone
    if (!m_options.outputLink.empty()) {
        linkOutput(m_options.outputLink, m_host->modem().rawOutput());
        m_host->setOutputName(m_options.outputLink);
    }
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
    Request request = requestOf(message);
    const ModemHost::SessionId session = m_clients.at(peer.number()).session;
    if (m_host->sessions().at(session).waiting >= kMostCalls)
        throw ProtocolError("too many calls at a time; accepted: " + std::to_string(kMostCalls));
    m_calls.emplace_back(m_context, peer);
    const auto call = std::prev(m_calls.end());
    call->session = session;
    call->id = id;
    call->request = std::move(request);
    call->begun = m_host->begin(call->session, call->request.function);
    call->hangs = call->begun.fault.hangs;
    if (call->hangs)
        return;
    if (m_host->isVirtual() || call->begun.latency.count() == 0) {
        finish(call);
        return;
    }
    call->timer.expires_after(call->begun.latency);
    call->timer.async_wait([this, call](const asio::error_code& error) {
        if (error)
            return;
        finish(call);
        pump();
    });
}

void ModemService::finish(Calls::iterator call)
{
    const modem::Reply reply = m_host->finish(call->session, call->request, call->begun);
    remember();  // before anybody can believe that it is so
    answer(*call, reply);
    m_calls.erase(call);
}

void ModemService::answer(const Call& call, const modem::Reply& reply)
{
    if (m_options.tellsCalls) {
        const auto& name = m_host->sessions().at(call.session).name;
        std::fprintf(stderr, "%10lld ms  %s: %s%s -> %d %s\n", static_cast<long long>(m_host->now().count()),
                     name.c_str(), std::string(modem::kRequests[indexOf(call.request.function)].name).c_str(),
                     argumentsOf(call.request).dump().c_str(), reply.code,
                     outputsOf(call.request.function, reply).dump().c_str());
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
    m_calls.remove_if([&](const Call& call) { return call.session == session; });  // cancels their timers
    m_host->disconnect(session);
    remember();
    pump();
}

void ModemService::control(Peer& peer, const Json& message)
{
    const std::int64_t id = idOf(message);
    try {
        const auto plain = withBytes(message);
        const auto& name = plain.at("control");
        const std::string control = name.is_string() ? name.get<std::string>() : message["control"].dump();
        Json result = Json::object();
        if (control == "clear")
            result = clear(plain);
        else if (control == "reset")
            result = reset(plain);
        else if (control == "stop" && !m_options.onStop)
            throw std::runtime_error("stop: not possible; the modem of 'arcsim run' ends with the program");
        else if (control != "stop")
            result = arcsim::control(*m_host, control, plain);
        if (control == "status") {
            const auto hanging =
                std::count_if(m_calls.begin(), m_calls.end(), [](const Call& each) { return each.hangs; });
            result["hanging"] = hanging;
        }
        const Json answer = {{"id", id}, {"ok", true}, {"result", withCharacters(result)}};
        remember();
        requireRoom(control, answer);
        peer.send(answer);
        if (control == "stop")
            m_options.onStop();
    } catch (const std::runtime_error& error) {
        peer.send({{"id", id}, {"ok", false}, {"error", charactersOf(error.what())}});
    }
}

Json ModemService::clear(const nlohmann::json& message)
{
    std::optional<std::size_t> request;
    const JsonNode node("clear", message);
    node.requireKeys({"id", "control", "function"});
    if (const auto function = node.find("function"))
        request = readRequest(*function);
    const unsigned dropped = m_host->dropFaults(request);
    return {{"dropped", dropped}, {"released", release(request)}};
}

unsigned ModemService::release(std::optional<std::size_t> request)
{
    unsigned released = 0;
    for (auto call = m_calls.begin(); call != m_calls.end();) {
        const auto current = call++;
        if (!current->hangs || (request && indexOf(current->request.function) != *request))
            continue;
        m_host->abandon(current->session);
        answer(*current, modem::answer(modem::kGenericError));
        m_calls.erase(current);
        ++released;
    }
    return released;
}

Json ModemService::reset(const nlohmann::json& message)
{
    const JsonNode node("reset", message);
    node.requireKeys({"id", "control", "latencies"});
    const auto latencies = node.find("latencies");
    const bool hasLatencies = !latencies || latencies->flag();
    release(std::nullopt);
    const std::map<ModemHost::SessionId, ModemHost::Session> sessions = m_host->sessions();
    m_host->stopOutput();
    prepare();
    if (!hasLatencies)
        m_host->setRealisticLatency(false);
    std::map<ModemHost::SessionId, ModemHost::SessionId> renewed;
    for (const auto& [session, old] : sessions)
        renewed[session] = m_host->connect({old.name, old.pid, false, false, 0, old.waiting});
    for (auto& [number, client] : m_clients)
        client.session = renewed.at(client.session);
    for (Call& call : m_calls)  // answered by the modem as it is when their time comes
        call.session = renewed.at(call.session);
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
    const auto next = m_host->nextLook();
    if (!next) {
        m_nextLook.cancel();
        return;
    }
    m_nextLook.expires_at(*next);
    m_nextLook.async_wait([this](const asio::error_code& error) {
        if (!error)
            pump();
    });
}

void ModemService::cutClients()
{
    while (!m_clients.empty()) {
        const auto [number, client] = *m_clients.begin();
        m_calls.remove_if([&, session = client.session](const Call& call) { return call.session == session; });
        m_clients.erase(m_clients.begin());
        m_host->cutOff(client.session);
        if (const auto peer = client.peer.lock())
            peer->close();
    }
}

void ModemService::remember()
{
    if (m_options.memoryFile.empty())
        return;
    writeMemory(m_options.memoryFile, m_options.scenarioName, m_host->memory(), m_remembered);
}

}  // namespace arcsim
