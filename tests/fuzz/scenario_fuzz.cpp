// Any bytes as a scenario can be simulated, or a ScenarioError says why not, without long delays. Any other exception
// ends the run.

#include "fuzz/Finding.h"
#include "host/ModemHost.h"
#include "scenario/ScenarioFile.h"
#include "support/Printable.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

using arcsim::Argument;
using arcsim::Function;
using arcsim::ModemHost;

/// An application's first seconds with the modem.
void simulate(arcsim::ScenarioFile scenario)
{
    for (arcsim::modem::Fault& fault : scenario.modem.faults)
        fault.latency.reset();  // a call may take a day; here that would only keep other inputs from being tried
    ModemHost host(scenario, arcsim::ScenarioClock::Mode::virtualTime);
    const ModemHost::SessionId session = host.connect({"fuzz", 1, false, true, 0, 0});
    const auto call = [&](Function function, std::vector<Argument> arguments) {
        const ModemHost::Begun begun = host.begin(session, function);
        host.finish(session, {function, std::move(arguments)}, begun);
    };
    call(Function::Open, {});
    call(Function::CheckModuleSetting, {Argument::of("Power/Cpu"), Argument::of(nullptr), Argument::pointer(true),
                                        Argument::of(255), Argument::pointer(false)});
    call(Function::StartGNSSraw, {Argument::pointer(true), Argument::of(255)});
    call(Function::EnableLSTA, {Argument::of(10), Argument::of(true), Argument::of(1)});
    host.advanceTo(host.now() + std::chrono::milliseconds(2000));
    call(Function::CurrentLSTA, {Argument::of(10), Argument::pointer(true)});
    call(Function::Close, {});
    host.takeEvents();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(data, data + size);
    try {
        simulate(arcsim::parseScenario("fuzz.json", text));
    } catch (const arcsim::ScenarioError& error) {
        const std::string why = error.what();
        if (why.empty() || support::lengthOfUtf8(why) != why.size())
            fuzz::finding("a refusal that nobody can read: " + why);
    } catch (const std::runtime_error&) {  // for example a recording that is none
    }
    return 0;
}
