#pragma once

// What several tests of the modem host need: one by a scenario's text, and clients that call it.

#include "host/ModemHost.h"
#include "scenario/ScenarioFile.h"

#include <string>
#include <utility>
#include <vector>

namespace host_test {

using arcsim::Argument;
using arcsim::Function;
using arcsim::ModemHost;
using arcsim::ScenarioClock;
using arcsim::modem::EngineState;
using arcsim::modem::Reply;
using std::chrono::milliseconds;

/// A host whose time is virtual and whose scenario says nothing but this. Calls take no time unless it says so.
class VirtualHost : public ModemHost
{
public:
    explicit VirtualHost(const std::string& members = "", bool latencies = false)
        : ModemHost(arcsim::parseScenario("test.json", std::string(R"({"latencies":)") +
                                                           (latencies ? "true" : "false") +
                                                           (members.empty() ? "" : ",") + members + "}"),
                    ScenarioClock::Mode::virtualTime)
    {
    }
    EngineState engine() const { return modem().engine(now()); }
    milliseconds timeAfter(milliseconds time)
    {
        advanceTo(now() + time);
        return now();
    }
};

class Client
{
public:
    explicit Client(ModemHost& host, ModemHost::Session session = {"test", 1, false, true, 0, 0})
        : m_host(host), m_id(host.connect(std::move(session)))
    {
    }
    ModemHost::SessionId id() const { return m_id; }
    const ModemHost::Session& session() const { return m_host.sessions().at(m_id); }

    Reply call(Function function, std::vector<Argument> arguments = {})
    {
        const ModemHost::Begun begun = m_host.begin(m_id, function);
        return m_host.finish(m_id, {function, std::move(arguments)}, begun);
    }
    int open() { return call(Function::Open).code; }
    int close() { return call(Function::Close).code; }
    int start() { return call(Function::StartGNSSraw, {Argument::pointer(true), Argument::of(255)}).code; }
    int stop() { return call(Function::StopGNSS).code; }
    /// Something that needs an open connection and changes nothing.
    int ask() { return versions().code; }
    Reply versions()
    {
        return call(Function::GetRilVersion, {Argument::pointer(true), Argument::pointer(true), Argument::of(64)});
    }
    Reply read(const char* key)
    {
        return call(Function::CheckModuleSetting, {Argument::of(key), Argument::of(nullptr), Argument::pointer(true),
                                                   Argument::of(255), Argument::pointer(false)});
    }
    Reply write(const char* key, const char* quoted)
    {
        return call(Function::CheckModuleSetting, {Argument::of(key), Argument::of(quoted), Argument::pointer(false),
                                                   Argument::of(0), Argument::pointer(true)});
    }
    int enableLsta(int technologyId, int periodSeconds = 0)
    {
        return call(Function::EnableLSTA, {Argument::of(technologyId), Argument::of(true), Argument::of(periodSeconds)})
            .code;
    }

private:
    ModemHost& m_host;
    const ModemHost::SessionId m_id;
};

inline std::vector<int> idsOf(const std::vector<arcsim::modem::Modem::Event>& events)
{
    std::vector<int> ids;
    for (const auto& event : events)
        ids.push_back(event.id);
    return ids;
}

inline std::size_t requestOf(Function function)
{
    return static_cast<std::size_t>(function);
}

/// What goes wrong with a request whenever it is called, until it is dropped.
inline arcsim::modem::Fault faultWith(Function function, int code)
{
    arcsim::modem::Fault fault;
    fault.request = requestOf(function);
    fault.code = code;
    return fault;
}

}  // namespace host_test
