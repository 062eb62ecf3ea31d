#pragma once

#include "kelarcctl/Output.h"
#include "kelarcctl/Settings.h"
#include "kelarcctl/Trouble.h"
#include "kelarcctl/monitor/Inbox.h"
#include "kelarcctl/monitor/Model.h"

#include "kelarc/KelArc.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace kelarcctl {

/// Requests everything that is shown from the modem, again and again. No function waits for an answer. Main thread
/// only.
class Collector
{
public:
    /// `tell` is called with a JSON document for each event; it may be empty. A request that is not answered within
    /// `timeout` is shown as overdue.
    Collector(kelarc::KelArc& modem, std::shared_ptr<Inbox> inbox, Model& model, std::chrono::milliseconds timeout,
              std::function<void(const Json&)> tell);

    /// Opens the modem; after that, starts the output and reads everything.
    void open();

    // Requests of the user.
    void startOutput();
    void stopOutput();
    void read();
    void write(std::size_t setting, const std::string& value);

    /// To be called a few times a second, with the model's time set.
    void tick();

    /// The path of the terminal with the sentences, returned once each time the modem reports it.
    std::string takeDevice() { return std::exchange(m_newDevice, {}); }
    /// Reports that the terminal with the sentences is gone or could not be opened; `wasRead`: it has delivered data.
    void deviceLost(bool wasRead);

    // Messages from the library's threads, by way of the inbox.
    void logLine(int level, const std::string& text);
    void notified(kelarc::NOTIFY_ID id, int length, const std::string& data);
    void lstaChanged(kelarc::lsta::TYPE type, int status, double value);

private:
    static constexpr int kCodeOfNotOpen = 1;
    static constexpr int kCodeOfNoDaemon = 31;

    /// Makes a request; `answered` is called with the values on the main thread. `mayVanish`: a stop ends the request
    /// without an answer.
    template <typename... Values, typename Start, typename Answered>
    void ask(const std::string& what, Start start, Answered answered, bool mayVanish = false);
    void answered(std::uint64_t id);
    bool isOverburdened();

    void listen();
    void openAgain();
    void opened(int code);
    void forgetWhatMayVanish();
    void setUp();
    void readVersions();
    void readSetting(std::size_t row, bool afterWrite = false);
    void readLsta(std::size_t row);
    void setLsta(std::size_t row, int status, double value, bool isReport);
    void findOverdue();
    void requestOutput();
    void outputStarted(int code, const std::string& path);
    void follow(const ResultLine& line);
    void result(Style style, const std::string& text, const std::string& subject = "");
    void event(Style style, const std::string& text);
    void tell(const Json& json) const;
    void tellSetting(std::size_t row, const Setting::Reading& reading);
    Trouble troubleWith(int code, const std::string& what) const;
    std::string refusal(int code) const;

    kelarc::KelArc& m_modem;
    const std::shared_ptr<Inbox> m_inbox;
    Model& m_model;
    const std::chrono::milliseconds m_timeout;
    const std::function<void(const Json&)> m_tell;

    std::uint64_t m_lastId = 0;
    bool m_isOpen = false;
    bool m_wantsOutput = true;
    bool m_isStarting = false;  ///< a request to start the output is under way
    std::string m_newDevice{};
    long long m_nextStartMs = 0;
    long long m_nextReadMs = 0;
    std::uint64_t m_frontId = 0;  ///< id of the request whose turn it is
    long long m_frontSinceMs = 0;
    std::uint32_t m_listedTask = 0;
    std::uint32_t m_listedCount = 0;
};

template <typename... Values, typename Start, typename Answered>
void Collector::ask(const std::string& what, Start start, Answered answered, bool mayVanish)
{
    const std::uint64_t id = ++m_lastId;
    m_model.waiting.push_back({id, what, m_model.nowMs, mayVanish});
    start([inbox = m_inbox, id, answered = std::move(answered)](Values... values) {
        inbox->post(
            [id, answered, values = std::tuple<std::decay_t<Values>...>(std::move(values)...)](Collector& collector) {
                collector.answered(id);
                std::apply(answered, values);
            });
    });
}

}  // namespace kelarcctl
