#include "client/EmbeddedModem.h"

#include "client/Pause.h"
#include "host/Perform.h"
#include "protocol/EventBytes.h"
#include "support/Printable.h"

#include <cstdio>
#include <utility>

namespace arcsim {

using std::chrono::milliseconds;

EmbeddedModem::EmbeddedModem(Notifier& notifier) : m_notifier(notifier)
{
    m_usable = prepare(m_host);
    m_session = m_host->connect({});
}

/// Whether the scenario named by the environment can be simulated. Called without a lock, since files may be slow to
/// read.
bool EmbeddedModem::prepare(std::unique_ptr<ModemHost>& host)
{
    try {
        host = std::make_unique<ModemHost>(scenarioOfEnvironment(), modeOfEnvironment());
        return true;
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "simulated modem: %s\n", support::printable(error.what()).c_str());
        host = std::make_unique<ModemHost>(ScenarioFile{}, ScenarioClock::Mode::real);
        return false;
    }
}

modem::Reply EmbeddedModem::ask(const Request& request)
{
    std::unique_lock lock(m_mutex);
    const unsigned generation = m_generation;
    const ModemHost::Begun begun = m_host->begin(m_session, request.function);
    // The version belongs to the client library, so it is available even without a modem.
    if (!m_usable && request.function != Function::GetArcVersion) {
        m_host->abandon(m_session);
        return modem::answer(modem::kNoConnection);
    }
    if (begun.fault.hangs) {
        ++m_hanging;
        m_wasReset.wait(lock, [&] { return generation != m_generation; });
        return modem::answer(modem::kGenericError);
    }
    const bool waits = !m_host->isVirtual();
    lock.unlock();
    if (waits)
        pause(begun.latency);
    modem::Reply reply;
    use([&](ModemHost& host) { reply = host.finish(m_session, request, begun); });
    return reply;
}

void EmbeddedModem::use(const std::function<void(ModemHost& host)>& action)
{
    bool wantsLook = false;
    {
        const std::scoped_lock lock(m_mutex);
        action(*m_host);
        wantsLook = m_host->wantsLook();
    }
    if (wantsLook)
        m_notifier.wake();
}

void EmbeddedModem::passBy(Function function)
{
    const std::scoped_lock lock(m_mutex);
    m_host->count(function);
}

void EmbeddedModem::setHandler(bool isSet)
{
    const std::scoped_lock lock(m_mutex);
    m_host->setHandler(m_session, isSet);
}

void EmbeddedModem::elapse(milliseconds duration)
{
    {
        const std::scoped_lock lock(m_mutex);
        if (m_host->isVirtual()) {
            m_host->advanceTo(m_host->now() + duration);
            return;
        }
    }
    pause(duration);
}

Notifier::Due EmbeddedModem::takeDueEvents()
{
    Notifier::Due due;
    const std::scoped_lock lock(m_mutex);
    for (modem::Modem::Event& event : m_host->takeEvents())
        due.events.push_back({event.id, event.lsta ? bytesOf(*event.lsta) : std::move(event.payload)});
    due.next = m_host->nextLook();
    return due;
}

void EmbeddedModem::reset()
{
    std::unique_ptr<ModemHost> host;
    const bool usable = prepare(host);
    host->setRealisticLatency(false);
    {
        const std::scoped_lock lock(m_mutex);
        ++m_generation;
        // The new modem answers calls that wait for their latency, but not calls that hang.
        const unsigned waiting = m_host->sessions().at(m_session).waiting - std::exchange(m_hanging, 0U);
        m_session = host->connect({{}, 0, false, false, 0, waiting});
        m_usable = usable;
        std::swap(m_host, host);
    }
    m_wasReset.notify_all();  // the old modem and its raw output end here
}

void EmbeddedModem::setRealisticLatency(bool on)
{
    const std::scoped_lock lock(m_mutex);
    m_host->setRealisticLatency(on);
}

std::string EmbeddedModem::setting(const std::string& key)
{
    const std::scoped_lock lock(m_mutex);
    return m_host->modem().settings().read(key).value_or("");
}

void EmbeddedModem::forceSetting(const std::string& key, const std::string& quoted)
{
    use([&](ModemHost& host) { host.forceSetting(key, quoted); });
}

Engine EmbeddedModem::engine()
{
    const std::scoped_lock lock(m_mutex);
    switch (m_host->modem().engine(m_host->now())) {
    case modem::EngineState::starting:
        return Engine::Starting;
    case modem::EngineState::running:
        return Engine::Running;
    case modem::EngineState::off:
        break;
    }
    return Engine::Off;
}

bool EmbeddedModem::isOpen()
{
    const std::scoped_lock lock(m_mutex);
    return m_host->sessions().at(m_session).isOpen;
}

void EmbeddedModem::stop()
{
    const std::scoped_lock lock(m_mutex);
    m_host->stopOutput();
}

}  // namespace arcsim
