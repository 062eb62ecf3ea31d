#include "arcsim/Serving.h"

#include "arcsim/EndSignals.h"
#include "support/Files.h"

#include <filesystem>
#include <unistd.h>

namespace arcsim::program {

namespace {

std::string givenOr(const std::string& given, const char* variable)
{
    return given.empty() ? support::fileOfEnvironment(variable) : given;
}

/// An absolute path, since clients in other folders get this name. Empty when the name would not fit into the 255 bytes
/// that applications have for it; clients then get the terminal's own name.
std::string outputLink(const std::string& socketPath)
{
    constexpr std::size_t kLongest = 254;
    std::string link = std::filesystem::absolute(socketPath + ".nmea").string();
    return link.size() > kLongest ? "" : link;
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
    service.outputLink = outputLink(socketPath);
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
    EndSignals signals(context);
    signals.handle([&](int) { context.stop(); });
    ModemService::Options service = serviceOptions(options, socketPath);
    // The socket comes first: only the process that owns it may touch the files that belong to it.
    LineServer server(context, socketPath);
    service.onStop = [&] { server.whenSent([&] { context.stop(); }); };
    if (options.fresh)
        ::unlink(service.memoryFile.c_str());
    {
        ModemService modem(context, std::move(service));
        server.start(modem);
        started(modem);
        context.run();
    }  // files are removed here: while the socket exists, no other process creates new ones
    server.stop();
}

}  // namespace arcsim::program
