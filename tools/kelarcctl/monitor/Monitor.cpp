#include "kelarcctl/monitor/Monitor.h"

#include "kelarcctl/Ending.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/monitor/Collector.h"
#include "kelarcctl/monitor/EpochJson.h"
#include "kelarcctl/monitor/Feed.h"
#include "kelarcctl/monitor/Keys.h"
#include "kelarcctl/monitor/Screen.h"
#include "kelarcctl/monitor/Signals.h"
#include "kelarcctl/monitor/Terminal.h"

#include "support/Interrupt.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace kelarcctl {

namespace {

using Clock = Session::Clock;
using std::chrono::milliseconds;

constexpr milliseconds kTick{250};
constexpr milliseconds kLeastBetweenScreens{450};
constexpr milliseconds kMostBetweenScreens{1000};  // ages are shown in seconds

/// The main loop: keys, signals, messages of the library, sentences.
class Monitor
{
public:
    Monitor(kelarc::KelArc& modem, const support::Interrupt& interrupt, const Signals& signals,
            std::shared_ptr<Inbox> inbox, const Invocation& invocation, Terminal* terminal)
        : m_interrupt(interrupt), m_signals(signals), m_inbox(std::move(inbox)), m_output(invocation.json),
          m_terminal(terminal),
          m_collector(modem, m_inbox, m_model, invocation.timeout,
                      terminal == nullptr ? std::function<void(const Json&)>([this](const Json& json) { tell(json); })
                                          : nullptr)
    {
    }

    int run(std::optional<milliseconds> duration)
    {
        const Clock::time_point end = duration ? m_begin + *duration : Clock::time_point::max();
        m_collector.open();
        while (!m_hasEnded) {
            wait(std::min({end, m_feed.epochEnd(m_model), Clock::now() + kTick}));
            m_model.nowMs = std::chrono::duration_cast<milliseconds>(Clock::now() - m_begin).count();
            takeMessages();
            readDevice();
            if (Clock::now() >= m_feed.epochEnd(m_model))
                take(m_feed.flush());
            m_collector.tick();
            pressKeys();
            showIfDue();
            if (m_terminal == nullptr && m_interrupt.isRequested())
                throw Failure(kExitInterrupted, "interrupted while watching the modem");
            if (m_interrupt.isRequested() || m_isHungUp)
                return kExitInterrupted;
            if (Clock::now() >= end || !m_canTell)
                break;
        }
        return m_canTell ? kExitOk : kExitRefused;
    }

private:
    void wait(Clock::time_point until)
    {
        enum
        {
            kInterrupt,
            kInbox,
            kSignals,
            kDevice,
            kKeys,
        };
        pollfd watched[] = {{m_interrupt.descriptor(), POLLIN, 0},
                            {m_inbox->descriptor(), POLLIN, 0},
                            {m_signals.descriptor(), POLLIN, 0},
                            {m_feed.descriptor(), POLLIN, 0},
                            {m_terminal == nullptr ? -1 : STDIN_FILENO, POLLIN, 0}};
        const auto left = std::chrono::ceil<milliseconds>(until - Clock::now()).count();
        if (::poll(watched, std::size(watched), static_cast<int>(std::max<long long>(left, 0))) < 0) {
            if (errno != EINTR)
                throw std::system_error(errno, std::generic_category(), "cannot wait");
            return;
        }
        m_hasDeviceNews = watched[kDevice].revents != 0;
        m_isHungUp = m_isHungUp || (watched[kKeys].revents & (POLLHUP | POLLERR)) != 0;
        if (watched[kSignals].revents != 0 && m_signals.takeResize() && m_terminal != nullptr) {
            m_terminal->measure();
            m_mustShow = true;
        }
    }

    void takeMessages()
    {
        for (const Inbox::Message& message : m_inbox->take()) {
            message(m_collector);
            m_hasNews = true;
        }
        const std::string device = m_collector.takeDevice();
        if (!device.empty())
            openDevice(device);
        else if (m_model.output == RawOutput::off)
            m_feed.close();
    }

    void openDevice(const std::string& path)
    {
        try {
            m_feed.open(path);
        } catch (const std::system_error& error) {
            m_model.setNotice(Style::bad, error.what());
            m_collector.deviceLost(false);
        }
    }

    void readDevice()
    {
        if (!m_hasDeviceNews)
            return;
        m_hasDeviceNews = false;
        try {
            m_feed.read(m_model, [this](const nmea::Epoch& epoch) { take(epoch); });
        } catch (const std::system_error&) {
            m_hasNews = true;
            m_collector.deviceLost(m_feed.wasRead());
        }
    }

    void take(const std::optional<nmea::Epoch>& epoch)
    {
        if (!epoch)
            return;
        m_model.add(*epoch);
        m_hasNews = true;
        if (m_terminal == nullptr)
            tell(epochJson(*epoch, m_model));
    }

    void tell(const Json& json)
    {
        m_output.result(json, "");
        m_canTell = std::ferror(stdout) == 0;
    }

    void pressKeys()
    {
        if (m_terminal == nullptr)
            return;
        while (const std::optional<Key> key = m_terminal->key()) {
            m_mustShow = true;
            const bool wasPaused = m_view.isPaused;
            const Wish wish = press(m_view, m_model, *key, isRoomy(m_terminal->rows(), m_terminal->columns()));
            if (m_view.isPaused && !wasPaused)
                m_paused = std::make_unique<Model>(m_model);
            fulfil(wish);
        }
    }

    void fulfil(const Wish& wish)
    {
        switch (wish.kind) {
        case Wish::none:
            break;
        case Wish::quit:
            m_hasEnded = true;
            break;
        case Wish::start:
            m_collector.startOutput();
            break;
        case Wish::stop:
            m_collector.stopOutput();
            break;
        case Wish::read:
            m_collector.read();
            break;
        case Wish::write:
            m_collector.write(wish.setting, wish.value);
            break;
        }
    }

    void showIfDue()
    {
        if (m_terminal == nullptr)
            return;
        const auto since = Clock::now() - m_shown;
        if (!m_mustShow && since < (m_hasNews ? kLeastBetweenScreens : kMostBetweenScreens))
            return;
        pollfd watched{STDOUT_FILENO, POLLOUT, 0};  // a slow or stuck terminal must not block the loop
        if (::poll(&watched, 1, 0) != 1)
            return;
        m_shown = Clock::now();
        m_mustShow = m_hasNews = false;
        m_terminal->draw(drawScreen(m_view.isPaused ? *m_paused : m_model, m_view, m_terminal->glyphs(),
                                    m_terminal->rows(), m_terminal->columns()));
    }

    const support::Interrupt& m_interrupt;
    const Signals& m_signals;
    const std::shared_ptr<Inbox> m_inbox;
    const Output m_output;
    Terminal* const m_terminal;  ///< null: print lines instead
    const Clock::time_point m_begin = Clock::now();

    Model m_model{};
    std::unique_ptr<Model> m_paused{};  ///< the model shown while the screen is paused
    View m_view{};
    Collector m_collector;
    Feed m_feed{};
    Clock::time_point m_shown{};
    bool m_hasDeviceNews = false;
    bool m_hasNews = false;
    bool m_mustShow = true;
    bool m_isHungUp = false;
    bool m_canTell = true;
    bool m_hasEnded = false;
};

bool wantsNoColour()
{
    const char* const value = std::getenv("NO_COLOR");
    return value != nullptr && *value != '\0';
}

/// The library's log must not be written across the screen; the screen shows the log itself.
std::string logTarget(const Invocation& invocation)
{
    const bool isOnScreen = !invocation.json && invocation.log == "stderr" && ::isatty(STDERR_FILENO) == 1;
    return isOnScreen ? "/dev/null" : invocation.log;
}

}  // namespace

int runMonitor(const MonitorOptions& options, const Invocation& invocation)
{
    if (!invocation.json && (::isatty(STDIN_FILENO) != 1 || ::isatty(STDOUT_FILENO) != 1))
        throw Failure(kExitUsage, "standard input and output are no terminal; --json prints lines instead");
    support::Interrupt interrupt;
    Signals signals;
    const auto log = std::make_shared<Log>(logTarget(invocation), invocation.logLevel);
    const auto inbox = std::make_shared<Inbox>();
    auto modem = std::make_unique<kelarc::KelArc>([log, inbox](int level, const char* text) {
        log->line(level, text);
        inbox->postNews([level, line = std::string(text)](Collector& collector) { collector.logLine(level, line); });
    });
    interrupt.allow();
    signals.allowStop();
    int exitCode = kExitOk;
    try {
        std::unique_ptr<Terminal> terminal;
        if (!invocation.json) {
            terminal = std::make_unique<Terminal>(!options.noColour && !wantsNoColour());
            support::Interrupt::beforeLeaving(Terminal::abandon);
        }
        Monitor monitor(*modem, interrupt, signals, inbox, invocation, terminal.get());
        exitCode = monitor.run(options.duration);
    } catch (const std::exception& error) {
        exitCode = report(error, Output(invocation.json));
    }
    Session session(*modem, interrupt, *log, invocation.timeout);
    return endRun(session, *log, exitCode, Output(invocation.json));
}

}  // namespace kelarcctl
