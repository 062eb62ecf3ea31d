#include "client/Simulator.h"

#include "client/Pause.h"
#include "modem/Requests.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace arcsim {

namespace {

using std::chrono::milliseconds;

/// How long the exit of the process waits for a notification handler that is still running.
constexpr milliseconds kExitPatience{1000};

static_assert(kFunctions == modem::kRequests.size(), "requests are identified by the index of their function");

LstaInfo recordOf(const modem::Lsta& lsta)
{
    LstaInfo record{};
    record.indicator = lsta.indicator;
    record.status = lsta.status;
    record.value = lsta.value;
    return record;
}

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

std::vector<unsigned char> bytesOf(const modem::Lsta& lsta)
{
    const LstaInfo record = recordOf(lsta);
    std::vector<unsigned char> bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
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

Simulator::Simulator() : m_notifier([this] { return takeDueEvents(); })
{
    const std::scoped_lock lock(m_mutex);
    prepare();
    useLatency(m_scenario.realisticLatency);
}

void Simulator::prepare()
{
    m_begin.reset();
    m_rawOutput.reset();  // stops the feed
    const auto reception = [this](modem::LstaSystem system) { return m_rawOutput->receptionOf(system); };
    try {
        ScenarioFile file = scenarioOfEnvironment();
        m_scenario = std::move(file.modem);
        m_faults = std::make_unique<modem::FaultPlan>(m_scenario.seed, m_scenario.faults);
        m_modem = std::make_unique<modem::Modem>(m_scenario, reception);
        m_rawOutput = std::make_unique<RawOutput>(file.receiver, m_modem->settings());
        m_modem->setRawOutput(m_rawOutput->path());
        m_usable = true;
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "simulated modem: %s\n", error.what());
        m_scenario = {};
        m_faults = std::make_unique<modem::FaultPlan>(m_scenario.seed, m_scenario.faults);
        m_modem = std::make_unique<modem::Modem>(m_scenario, reception);
        m_usable = false;
    }
}

milliseconds Simulator::now() const
{
    if (!m_begin)
        return milliseconds(0);
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - *m_begin);
}

Simulator::Outcome Simulator::call(Function function, std::vector<std::string> arguments, const Ask& ask)
{
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_begin)
            m_begin = std::chrono::steady_clock::now();
    }
    const CallBook::Entry entry = m_book.enter(function, std::move(arguments));
    if (!entry.answer)
        return {askModem(function, entry.number, ask), false};
    if (entry.answer->during)
        entry.answer->during();
    pause(entry.answer->latency);
    return {*entry.answer, true};
}

Answer Simulator::askModem(Function function, unsigned number, const Ask& ask)
{
    Answer answer;
    milliseconds latency{0};
    {
        const std::scoped_lock lock(m_mutex);
        if (m_realisticLatency)
            latency = modem::realisticLatency(m_scenario.seed, indexOf(function), number);
        const modem::FaultEffect fault = m_faults->take(indexOf(function), number, now());
        answer.code = fault.code.value_or(modem::kSuccess);
        latency = fault.latency.value_or(latency);
        // The version is the client library's own: it has one whatever the modem is like.
        if (!m_usable && function != Function::GetArcVersion)
            answer.code = modem::kNoConnection;
    }
    pause(latency);
    if (answer.code != modem::kSuccess)
        return answer;
    if (!withModem([&](modem::Modem& modem, milliseconds at) { answer = answerOf(ask(modem, at)); }))
        answer.code = modem::kGenericError;
    return answer;
}

bool Simulator::withModem(const std::function<void(modem::Modem&, milliseconds)>& use)
{
    bool eventsPlanned = false;
    bool outputFollowed = false;
    {
        const std::scoped_lock lock(m_mutex);
        use(*m_modem, now());
        outputFollowed = followModem();
        eventsPlanned = m_begin && m_modem->nextEvent(now());
    }
    if (eventsPlanned)
        m_notifier.wake();
    return outputFollowed;
}

bool Simulator::followModem()
{
    try {
        if (m_rawOutput)
            m_rawOutput->follow(*m_modem, now());
        return true;
    } catch (const std::runtime_error& error) {  // the recording has gone since the scenario was read
        std::fprintf(stderr, "simulated modem: %s\n", error.what());
        m_modem->stopGnss(now());
        return false;
    }
}

void Simulator::useLatency(bool realistic)
{
    m_realisticLatency = realistic;
    m_modem->setEngineStart(realistic ? m_scenario.engineStart : milliseconds(0));
}

void Simulator::setRealisticLatency(bool on)
{
    const std::scoped_lock lock(m_mutex);
    useLatency(on);
}

void Simulator::reset()
{
    m_notifier.reset();
    m_book.clear();
    {
        const std::scoped_lock lock(m_mutex);
        prepare();
        useLatency(false);
    }
    m_notifier.reset();  // once more for what the notification thread took from the old modem in between
}

const char* Simulator::keepText(const std::string& text)
{
    const std::scoped_lock lock(m_mutex);
    return m_keptTexts.insert(text).first->c_str();
}

Notifier::Due Simulator::takeDueEvents()
{
    Notifier::Due due;
    const std::scoped_lock lock(m_mutex);
    if (!m_begin)
        return due;
    followModem();
    for (modem::Modem::Event& event : m_modem->takeEvents(now()))
        due.events.push_back({event.id, event.lsta ? bytesOf(*event.lsta) : std::move(event.payload)});
    if (const auto next = m_modem->nextEvent(now()))
        due.next = *m_begin + *next;
    return due;
}

void Simulator::shutDown()
{
    m_notifier.shutDown(kExitPatience);
    const std::scoped_lock lock(m_mutex);
    if (m_rawOutput)
        m_rawOutput->stop();
}

}  // namespace arcsim
