#include "client/Simulator.h"

#include "client/EmbeddedModem.h"
#include "client/NoModem.h"
#include "client/RemoteModem.h"
#include "modem/Requests.h"
#include "protocol/EventBytes.h"
#include "support/Files.h"
#include "support/Printable.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace arcsim {

namespace {

/// How long the exit of the process waits for a notification handler that is still running.
constexpr std::chrono::milliseconds kExitPatience{1000};

static_assert(kFunctions == modem::kRequests.size(), "requests are identified by the index of their function");

Answer answerOf(modem::Reply reply)
{
    Answer answer;
    answer.code = reply.code;
    answer.text = std::move(reply.text);
    answer.secondText = std::move(reply.secondText);
    answer.indicator = reply.indicator;
    if (reply.lsta)
        answer.record = recordOf(*reply.lsta);
    return answer;
}

std::unique_ptr<Channel> channelOfEnvironment(Notifier& notifier)
{
    const std::string socket = support::fileOfEnvironment("ARCSIM_SOCKET");
    if (!socket.empty())
        return std::make_unique<RemoteModem>(socket, notifier);
    try {
        return std::make_unique<EmbeddedModem>(notifier);
    } catch (const std::runtime_error& error) {  // the process has no descriptor left for the raw output
        std::fprintf(stderr, "simulated modem: %s\n", support::printable(error.what()).c_str());
        return std::make_unique<NoModem>();
    }
}

}  // namespace

Simulator& Simulator::instance()
{
    static Simulator* const simulator = [] {
        auto* const made = new Simulator;
        std::atexit([] { instance().shutDown(); });
        return made;
    }();
    return *simulator;
}

Simulator::Simulator()
    : m_notifier([this] { return m_channel->takeDueEvents(); }), m_channel(channelOfEnvironment(m_notifier))
{
}

Simulator::Outcome Simulator::call(const Request& request)
{
    std::vector<std::string> shown;
    for (const Argument& argument : request.arguments)
        shown.push_back(argument.shown());
    const CallBook::Entry entry = m_book.enter(request.function, std::move(shown));
    if (!entry.answer)
        return {answerOf(m_channel->ask(request)), false};
    m_channel->passBy(request.function);
    if (entry.answer->during)
        entry.answer->during();
    m_channel->elapse(entry.answer->latency);
    if (request.function == Function::RegisterNotification && entry.answer->code == modem::kSuccess)
        m_channel->setHandler(request.arguments[0].set);
    return {*entry.answer, true};
}

void Simulator::reset()
{
    m_notifier.reset();
    m_book.clear();
    m_channel->reset();
    m_notifier.reset();  // once more, for events that the notification thread took from the old modem meanwhile
}

const char* Simulator::keepText(const std::string& text)
{
    const std::scoped_lock lock(m_mutex);
    return m_keptTexts.insert(text).first->c_str();
}

void Simulator::shutDown()
{
    m_notifier.shutDown(kExitPatience);
    m_channel->stop();
}

}  // namespace arcsim
