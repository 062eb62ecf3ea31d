#pragma once

#include "client/Channel.h"
#include "host/Perform.h"
#include "modem/ResultCode.h"

namespace arcsim {

/// Stands in for a modem that could not be created: calls answer as they do while the RIL daemon is dead.
class NoModem : public Channel
{
public:
    modem::Reply ask(const Request& request) override
    {
        // The version belongs to the client library, so it is available even without a modem.
        return request.function == Function::GetArcVersion ? localVersion() : modem::answer(modem::kNoConnection);
    }
    void passBy(Function) override {}
    void handlerIsSet() override {}
    void setHandler(bool) override {}
    void elapse(std::chrono::milliseconds) override {}
    Notifier::Due takeDueEvents() override { return {}; }
    void reset() override {}
    void setRealisticLatency(bool) override {}
    std::string setting(const std::string&) override { return {}; }
    void forceSetting(const std::string&, const std::string&) override {}
    Engine engine() override { return Engine::Off; }
    bool isOpen() override { return false; }
    void stop() override {}
};

}  // namespace arcsim
