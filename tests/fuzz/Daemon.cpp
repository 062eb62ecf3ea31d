#include "fuzz/Daemon.h"

#include "fuzz/Finding.h"

#include <filesystem>
#include <unistd.h>

namespace fuzz {

namespace {

using arcsim::Json;
using Protocol = asio::local::stream_protocol;

arcsim::ScenarioFile shortScenario()
{
    arcsim::ScenarioFile scenario;
    scenario.modem.engineStart = std::chrono::milliseconds(50);
    scenario.modem.coldFirstFix = std::chrono::milliseconds(100);
    scenario.modem.hotFirstFix = std::chrono::milliseconds(50);
    return scenario;
}

/// Of two threads, with an event in between.
arcsim::Recording shortRecording()
{
    constexpr const char* kText = R"({"recording":1,"utc":"","pid":1,"program":"p","library":null}
{"n":1,"us":10,"thread":1,"call":"ARC_Open","args":{}}
{"n":1,"us":20,"thread":1,"code":0,"out":{},"tookUs":10}
{"us":30,"thread":9,"event":72,"length":1,"data":"02"}
{"us":31,"thread":9,"handled":true,"tookUs":1}
{"n":2,"us":40,"thread":2,"call":"ARC_GetArcVersion","args":{}}
{"n":2,"us":50,"thread":2,"code":0,"out":{"version":"v"},"tookUs":10}
{"n":3,"us":60,"thread":1,"call":"ARC_Close","args":{}}
)";
    return arcsim::parseRecording("fuzz.jsonl", kText);
}

/// A day of virtual time and a hundred thousand events are accepted and take what they take; here they would only keep
/// other inputs from being tried.
bool takesLong(const Json& value, const std::string& key = {})
{
    constexpr double kMostMs = 1000;
    constexpr double kMostEvents = 1000;
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

/// What the client library does with a line of the daemon.
void understand(const std::string& line)
{
    const Json message = arcsim::messageOf(line);
    if (message.contains("event"))
        arcsim::eventOf(message);
    else if (message.contains("code"))
        for (std::size_t i = 0; i < arcsim::kFunctions; ++i) {
            arcsim::idOf(message);
            arcsim::replyOf(static_cast<arcsim::Function>(i), message);
        }
    else if (!message.contains("hello") && !message.contains("ok") && !message.contains("error"))
        finding("the daemon says what nobody understands: " + line);
}

}  // namespace

Daemon::Daemon()
    : m_path(
          (std::filesystem::temp_directory_path() / ("arcsim.fuzz." + std::to_string(getpid()) + ".socket")).string()),
      m_server(m_context, m_path)
{
    m_server.start(*this);
}

Daemon::~Daemon()
{
    end();
}

void Daemon::begin(Service service)
{
    if (service == Service::replay) {
        arcsim::ReplayService::Options options;
        options.fast = true;
        m_service = std::make_unique<arcsim::ReplayService>(m_context, shortRecording(), std::move(options));
        return;
    }
    arcsim::ModemService::Options options;
    options.makeHost = [] {
        return std::make_unique<arcsim::ModemHost>(shortScenario(), arcsim::ScenarioClock::Mode::virtualTime);
    };
    m_service = std::make_unique<arcsim::ModemService>(m_context, std::move(options));
}

void Daemon::end()
{
    for (std::size_t peer = 0; peer < kPeers; ++peer)
        hangUp(peer);
    m_service.reset();
    m_context.restart();
    m_context.poll();  // handlers of what has gone with the modem
}

void Daemon::say(std::size_t peer, std::string_view bytes)
{
    Client& client = m_clients[peer];
    if (!client.socket) {
        client.socket.emplace(m_context);
        client.socket->connect(Protocol::endpoint(m_path));
        client.socket->non_blocking(true);
    }
    while (!bytes.empty()) {
        asio::error_code error;
        const std::size_t count = client.socket->write_some(asio::buffer(bytes), error);
        settle();
        if (error && error != asio::error::would_block)
            return;  // the daemon has hung up
        bytes.remove_prefix(count);
    }
}

void Daemon::hangUp(std::size_t peer)
{
    m_clients[peer].socket.reset();
    m_clients[peer].heard = {};
    settle();
}

void Daemon::settle()
{
    bool goesOn = true;
    while (goesOn) {
        m_context.restart();
        goesOn = m_context.poll() > 0;
        for (Client& client : m_clients)
            goesOn = hear(client) || goesOn;
    }
}

/// Whether there was anything.
bool Daemon::hear(Client& client)
{
    if (!client.socket)
        return false;
    std::array<char, 65536> buffer{};
    asio::error_code error;
    const std::size_t count = client.socket->read_some(asio::buffer(buffer), error);
    if (error == asio::error::would_block)
        return false;
    if (error) {  // the daemon has hung up; who says more connects anew
        client.socket.reset();
        client.heard = {};
        return true;
    }
    client.heard.add(std::string_view(buffer.data(), count));
    while (const auto line = client.heard.take()) {
        if (line->size() > arcsim::kLongestLine)
            finding("the daemon sends a line of " + std::to_string(line->size()) + " bytes");
        understand(*line);
    }
    return true;
}

void Daemon::message(arcsim::Peer& peer, const Json& message)
{
    if (takesLong(message))
        return;
    try {
        m_service->message(peer, message);
    } catch (const arcsim::ProtocolError&) {
        throw;
    } catch (const std::exception& error) {  // the server would only tell the peer
        finding(std::string("neither an answer nor a refusal: ") + error.what());
    }
}

void Daemon::left(arcsim::Peer& peer)
{
    m_service->left(peer);
}

}  // namespace fuzz
