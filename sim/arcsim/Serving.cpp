#include "arcsim/Serving.h"

#include "support/Files.h"

#include <asio/post.hpp>
#include <asio/signal_set.hpp>

#include <csignal>
#include <unistd.h>

namespace arcsim::program {

namespace {

std::string givenOr(const std::string& given, const char* variable)
{
    return given.empty() ? support::fileOfEnvironment(variable) : given;
}

}  // namespace

ModemService::Options serviceOptions(const ServeOptions& options, const std::string& socketPath)
{
    const std::string scenario = givenOr(options.scenario, "ARCSIM_SCENARIO");
    const std::string recording = givenOr(options.recording, "ARCSIM_REPLAY");
    const ScenarioClock::Mode mode = options.time.empty() ? modeOfEnvironment() : modeOf("--time", options.time);
    ModemService::Options service;
    service.makeHost = [scenario, recording, mode] {
        return std::make_unique<ModemHost>(scenarioOf(scenario, recording), mode);
    };
    service.outputLink = socketPath + ".nmea";
    if (options.keepsMemory)
        service.memoryFile = socketPath + ".memory";
    service.scenarioName = scenario + '|' + recording;
    service.tellsCalls = options.tellsCalls;
    return service;
}

void serve(const ServeOptions& options, const std::string& socketPath,
           const std::function<void(const ModemService&)>& started)
{
    asio::io_context context(1);
    asio::signal_set signals(context, SIGINT, SIGTERM);
    signals.async_wait([&](const asio::error_code& error, int) { error ? void() : context.stop(); });
    ModemService::Options service = serviceOptions(options, socketPath);
    service.onStop = [&] { asio::post(context, [&] { context.stop(); }); };
    // The socket first: of two processes at one socket only one may touch what belongs to it.
    LineServer server(context, socketPath);
    if (options.fresh)
        ::unlink(service.memoryFile.c_str());
    {
        ModemService modem(context, std::move(service));
        server.start(modem);
        started(modem);
        context.run();
    }  // with its files: as long as the socket is there, nobody else makes new ones
    server.stop();
}

}  // namespace arcsim::program
