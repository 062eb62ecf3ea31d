// An application that does what lines on standard input say, one call of the client library each:
//
//   NUMBER THREAD COMMAND [WORD]...
//
// THREAD names one of its threads (any word), on which its calls come one after the other; calls of several overlap.
// Each answer is a line "NUMBER CODE [TEXT]", where TEXT is what the call has put out, its line ends as \r and \n; each
// notification a line "event ID HEX". The program ends with its standard input, without closing anything.

#include "daemon/MixedCalls.h"
#include "daemon/Output.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using daemon_test::say;
using daemon_test::Words;

constexpr int kRoom = 256;

void noteEvent(int id, void* data, int length)
{
    static const char* const digits = "0123456789abcdef";
    std::string hex;
    const auto* const bytes = static_cast<const unsigned char*>(data);
    for (int i = 0; i < length; ++i) {
        hex += digits[bytes[i] >> 4U];
        hex += digits[bytes[i] & 0x0FU];
    }
    say("event " + std::to_string(id) + ' ' + hex);
}

std::string answered(int code, const std::string& text = "")
{
    std::string line = std::to_string(code) + (text.empty() ? "" : " ");
    for (const char each : text)
        line += each == '\r' ? "\\r" : each == '\n' ? "\\n" : std::string(1, each);
    return line;
}

std::string readSetting(const Words& words)
{
    char reply[kRoom] = {};
    const int code = ARC_CheckModuleSetting(words.at(0).c_str(), nullptr, reply, sizeof reply - 1, nullptr);
    return answered(code, reply);
}

std::string writeSetting(const Words& words)
{
    int indicator = -1;
    const int code = ARC_CheckModuleSetting(words.at(0).c_str(), words.at(1).c_str(), nullptr, 0, &indicator);
    return answered(code, std::to_string(indicator));
}

std::string versions(const Words&)
{
    char primary[kRoom] = {};
    char secondary[kRoom] = {};
    const int code = ARC_GetRilVersion(primary, secondary, kRoom - 1);
    return answered(code, std::string(primary) + '|' + secondary);
}

std::string start(const Words&)
{
    char path[kRoom] = {};
    const int code = ARC_StartGNSSraw(path, sizeof path - 1);
    return answered(code, path);
}

/// As an application does that does not wait: without a pause.
std::string startUntilReady(const Words&)
{
    int code = 0;
    long long busy = -1;
    char path[kRoom] = {};
    do {
        ++busy;
        code = ARC_StartGNSSraw(path, sizeof path - 1);
    } while (code == 15);
    return answered(code, busy > 0 ? "was busy" : "was ready");
}

std::string atCommand(const Words& words)
{
    char answer[kRoom] = {};
    const int code = ARC_AtcTunneling(words.at(0).c_str(), answer);
    return answered(code, answer);
}

std::string lsta(const Words& words)
{
    LstaInfo record{};
    const int code = ARC_CurrentLSTA(std::stoi(words.at(0)), &record);
    std::ostringstream text;
    text << record.indicator << ' ' << record.status << ' ' << record.value;
    return answered(code, text.str());
}

std::string arcVersion(const Words&)
{
    const char* const version = ARC_GetArcVersion();
    return version == nullptr ? answered(1) : answered(0, version);
}

const std::map<std::string, std::function<std::string(const Words&)>>& commands()
{
    // Never destroyed: callers may still wait in the client library when the process ends.
    static const auto& table = *new std::map<std::string, std::function<std::string(const Words&)>>{
        {"method", [](const Words& words) { return answered(ARC_SetNotificationMethod(std::stoi(words.at(0)))); }},
        {"open", [](const Words&) { return answered(ARC_Open()); }},
        {"close", [](const Words&) { return answered(ARC_Close()); }},
        {"register", [](const Words&) { return answered(ARC_RegisterNotification(noteEvent)); }},
        {"unregister", [](const Words&) { return answered(ARC_RegisterNotification(nullptr)); }},
        {"version", arcVersion},
        {"versions", versions},
        {"log", [](const Words& words) { return answered(ARC_EnableLogging(3, words.at(0).c_str())); }},
        {"at", atCommand},
        {"read", readSetting},
        {"write", writeSetting},
        {"start", start},
        {"start-until-ready", startUntilReady},
        {"stop", [](const Words&) { return answered(ARC_StopGNSS()); }},
        {"force-stop", [](const Words&) { return answered(ARC_ForceStopGNSS()); }},
        {"reset-assistance", [](const Words&) { return answered(ARC_ResetAGNSS()); }},
        {"lsta", lsta},
        {"enable-lsta", [](const Words& words) { return answered(ARC_EnableLSTA(std::stoi(words.at(0)), true, 0)); }},
        {"mixed", daemon_test::mixedCalls},
    };
    return table;
}

/// A thread of the application with the calls that it has to make.
class Caller
{
public:
    Caller() : m_thread([this] { run(); }) { m_thread.detach(); }

    void add(std::string number, Words words)
    {
        const std::scoped_lock lock(m_mutex);
        m_lines.push_back({std::move(number), std::move(words)});
        m_changed.notify_all();
    }

private:
    struct Line
    {
        std::string number;
        Words words;
    };

    void run()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_changed.wait(lock, [this] { return !m_lines.empty(); });
            const Line line = m_lines.front();
            m_lines.pop_front();
            lock.unlock();
            const std::string command = line.words.front();
            say(line.number + ' ' + commands().at(command)(Words(line.words.begin() + 1, line.words.end())));
            lock.lock();
        }
    }

    std::mutex m_mutex{};
    std::condition_variable m_changed{};
    std::deque<Line> m_lines{};
    std::thread m_thread;
};

}  // namespace

int main()
{
    commands();
    // Neither callers nor what they use are destroyed: a call may still wait for its answer when the input ends.
    static auto& callers = *new std::map<std::string, std::unique_ptr<Caller>>;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream stream(line);
        std::string number;
        std::string thread;
        stream >> number >> thread;
        Words words;
        for (std::string word; stream >> word;)
            words.push_back(word);
        if (words.empty() || commands().count(words.front()) == 0) {
            std::cerr << "'" << line << "' is not accepted; accepted: NUMBER THREAD COMMAND [WORD]...\n";
            ::_exit(2);
        }
        auto& caller = callers[thread];
        if (!caller)
            caller = std::make_unique<Caller>();
        caller->add(number, words);
    }
    return 0;
}
