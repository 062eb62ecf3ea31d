// Peers send the modem's service anything and hang up at any time. Each accepted line gets one answer, a refused line
// ends only its connection, and the service's messages are valid. An input is a talk (Talk.h). If it begins with 1B,
// calls take their time; otherwise time leaps.

#include "arcsim/ModemService.h"
#include "fuzz/Finding.h"
#include "fuzz/Pass.h"
#include "fuzz/Talk.h"

#include <cstdint>

namespace {

using std::chrono::milliseconds;
using Mode = arcsim::ScenarioClock::Mode;

arcsim::ModemService::Options optionsFor(Mode mode)
{
    arcsim::ScenarioFile scenario;
    scenario.modem.engineStart = milliseconds(50);
    scenario.modem.coldFirstFix = milliseconds(100);
    scenario.modem.hotFirstFix = milliseconds(50);
    arcsim::ModemService::Options options;
    options.makeHost = [scenario, mode] { return std::make_unique<arcsim::ModemHost>(scenario, mode); };
    options.onStop = [] {};
    return options;
}

class Conversation
{
public:
    Conversation(asio::io_context& context, Mode mode) : m_context(context), m_service(context, optionsFor(mode)) {}

    void run(std::string_view input)
    {
        fuzz::talk(m_peers, input, [this](milliseconds time) { pass(time); });
        m_peers.settle();
        endCalls();
        m_peers.requireAnswers();
    }

private:
    void pass(milliseconds time) { fuzz::pass(m_context, m_clock, time); }
    /// Those that hang are answered when the faults are taken back, all others in their time.
    void endCalls()
    {
        m_peers.hangUp(0);
        m_peers.say(0, "{\"id\":1,\"control\":\"clear\"}\n");
        pass(std::chrono::minutes(10));
    }

    host_test::HeldClock m_clock{};
    asio::io_context& m_context;
    arcsim::ModemService m_service;
    fuzz::Peers m_peers{m_service};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static asio::io_context context(1);
    const std::string text(data, data + size);
    const bool takesTime = size > 0 && text.front() == 0x1B;
    Conversation(context, takesTime ? Mode::real : Mode::virtualTime)
        .run(std::string_view(text).substr(takesTime ? 1 : 0));
    context.restart();
    context.poll();  // handlers of what has gone with the service
    return 0;
}
