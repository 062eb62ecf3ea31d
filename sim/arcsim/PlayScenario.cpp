#include "arcsim/PlayScenario.h"

#include "host/ModemHost.h"
#include "modem/Requests.h"
#include "protocol/EventBytes.h"
#include "protocol/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace arcsim::program {

namespace {

using std::chrono::milliseconds;

/// The other end of the terminal, read as soon as data arrives.
class Reader
{
public:
    explicit Reader(const std::string& path)
        : m_descriptor(::open(path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
    {
        if (m_descriptor < 0)
            throw std::system_error(errno, std::generic_category(), path);
    }
    ~Reader() { ::close(m_descriptor); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    void copyTo(std::FILE* stream) const
    {
        std::array<char, 4096> buffer{};
        for (ssize_t count = 0; (count = ::read(m_descriptor, buffer.data(), buffer.size())) > 0;)
            std::fwrite(buffer.data(), 1, static_cast<std::size_t>(count), stream);
    }

private:
    int m_descriptor;
};

/// Repeats a failed call, as applications do, until the time is over.
void call(ModemHost& host, ModemHost::SessionId session, const Request& request, milliseconds end)
{
    constexpr milliseconds kPause{250};
    for (;;) {
        const ModemHost::Begun begun = host.begin(session, request.function);
        const int code = begun.fault.hangs ? modem::kGenericError : host.finish(session, request, begun).code;
        if (code == modem::kSuccess)
            return;
        std::fprintf(stderr, "%10lld ms  %s answered %d\n", static_cast<long long>(host.now().count()),
                     std::string(modem::kRequests[indexOf(request.function)].name).c_str(), code);
        if (host.now() >= end)
            return;
        host.advanceTo(host.now() + kPause);
    }
}

void show(const ModemHost& host, const modem::Modem::Event& event)
{
    std::fprintf(stderr, "%10lld ms  event %d %s\n", static_cast<long long>(host.now().count()), event.id,
                 hexOf(event.lsta ? bytesOf(*event.lsta) : event.payload).c_str());
}

}  // namespace

void playScenario(const std::string& scenario, milliseconds duration)
{
    ModemHost host(scenarioOf(scenario, ""), ScenarioClock::Mode::virtualTime);
    const Reader reader(host.modem().rawOutput());
    const ModemHost::SessionId session = host.connect({"play", 0, false, true, 0, 0});
    call(host, session, {Function::Open, {}}, duration);
    if (host.now() >= duration)
        return;
    call(host, session, {Function::StartGNSSraw, {Argument::pointer(true), Argument::of(255)}}, duration);
    for (;;) {
        for (const modem::Modem::Event& event : host.takeEvents())
            show(host, event);
        reader.copyTo(stdout);
        if (!host.isOutputTaken())
            continue;  // first read everything in the terminal
        const milliseconds next = std::min(host.nextPlanned().value_or(duration), duration);
        if (host.now() >= duration)
            return;
        host.advanceTo(std::max(next, host.now() + milliseconds(1)));
    }
}

}  // namespace arcsim::program
