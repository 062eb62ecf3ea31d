#include "client/RemoteModem.h"

#include "client/Pause.h"
#include "host/Perform.h"
#include "protocol/LineBuffer.h"
#include "protocol/Text.h"
#include "receiver/BackgroundThread.h"
#include "support/Printable.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <pthread.h>
#include <system_error>
#include <unistd.h>

namespace arcsim {

namespace {

using std::chrono::milliseconds;

/// How often a lost connection is retried while the application believes it open.
constexpr milliseconds kRetry{50};

void complain(const std::string& path, const std::string& text)
{
    std::fprintf(stderr, "simulated modem: %s: %s\n", support::printable(path).c_str(),
                 support::printable(text).c_str());
}

}  // namespace

RemoteModem::RemoteModem(std::string path, Notifier& notifier) : m_path(std::move(path)), m_notifier(notifier)
{
    m_state.name = program_invocation_short_name;
    m_state.pid = getpid();
}

RemoteModem::~RemoteModem() = default;

modem::Reply RemoteModem::unreachable(const Request& request)
{
    // The version belongs to the client library, so it is available even without a modem.
    if (request.function == Function::GetArcVersion)
        return localVersion();
    const std::lock_guard lock(m_mutex);
    return modem::answer(m_codeOfUnreachable);
}

modem::Reply RemoteModem::ask(const Request& request)
{
    const std::optional<Json> answer = exchange(callMessage(0, request, threadNumber()), &request);
    if (!answer)
        return unreachable(request);
    try {
        return replyOf(request.function, *answer);
    } catch (const ProtocolError& error) {
        complain(m_path, error.what());
        return unreachable(request);
    }
}

void RemoteModem::remember(const Request& request, int code)
{
    if (code != modem::kSuccess)
        return;
    if (request.function == Function::Open)
        m_state.isOpen = true;
    else if (request.function == Function::Close)
        m_state.isOpen = false;
    else if (request.function == Function::RegisterNotification)
        m_state.hasHandler = request.arguments[0].set;
}

std::optional<Json> RemoteModem::exchange(Json message, const Request* request)
{
    std::unique_lock lock(m_mutex);
    if (!connect())
        return std::nullopt;
    const std::int64_t id = ++m_lastId;
    message["id"] = id;
    Waiting waiting;
    waiting.request = request;
    m_waiting[id] = &waiting;
    if (message.value("call", "") == "ARC_RegisterNotification")
        m_registering = id;
    const std::shared_ptr<SocketStream> stream = m_stream;
    stream->queue(lineOf(message));
    lock.unlock();
    stream->flush();
    lock.lock();
    m_changed.wait(lock, [&] { return waiting.answer || waiting.isLost; });
    m_waiting.erase(id);
    return waiting.answer;
}

bool RemoteModem::connect()
{
    if (m_stream || m_stop)
        return !m_stop;
    try {
        const auto stream = std::make_shared<SocketStream>(m_path);
        startReceiving();
        m_stream = stream;
    } catch (const std::system_error& error) {  // the result code of the next call reports this
        const bool isDenied = error.code() == std::errc::permission_denied;
        m_codeOfUnreachable = isDenied ? modem::kDenied : modem::kNoConnection;
        return false;
    }
    m_codeOfUnreachable = modem::kNoConnection;
    m_stream->queue(lineOf(helloMessage(m_state)));  // sent by the next thread that sends or receives
    m_changed.notify_all();
    return true;
}

void RemoteModem::startReceiving()
{
    if (m_runs)
        return;
    std::thread thread = backgroundThread([this] { run(); });
    pthread_setname_np(thread.native_handle(), "arcsim socket");
    // Detached, since it cannot be joined safely: the process may exit at any time.
    thread.detach();
    m_runs = true;
}

void RemoteModem::run()
{
    std::unique_lock lock(m_mutex);
    while (!m_stop) {
        if (m_stream)
            receive(lock);
        else if (m_state.isOpen || m_state.hasHandler)
            m_changed.wait_for(lock, kRetry, [&] { return m_stop || m_stream; }) || connect();
        else
            m_changed.wait(lock, [&] { return m_stop || m_stream || m_state.isOpen || m_state.hasHandler; });
    }
}

void RemoteModem::receive(std::unique_lock<std::mutex>& lock)
{
    const std::shared_ptr<SocketStream> stream = m_stream;
    LineBuffer lines;
    lock.unlock();
    stream->flush();
    std::string wrong;
    while (wrong.empty()) {
        const std::string bytes = stream->receive();
        if (bytes.empty())
            break;
        lines.add(bytes);
        lock.lock();
        wrong = takeAll(lines);
        lock.unlock();
    }
    if (!wrong.empty())
        complain(m_path, wrong);
    lock.lock();
    lose();
}

/// Reports what was wrong with a line.
std::string RemoteModem::takeAll(LineBuffer& lines)
{
    try {
        while (const auto line = lines.take())
            take(*line);
        if (lines.isOverlong())
            throw ProtocolError("a line is longer than " + std::to_string(kLongestLine) + " bytes");
        return {};
    } catch (const std::exception& error) {
        return *error.what() == '\0' ? "a line that nobody understands" : error.what();
    }
}

void RemoteModem::lose()
{
    m_stream.reset();
    for (const auto& [id, waiting] : m_waiting)
        waiting->isLost = !waiting->answer;
    m_changed.notify_all();
}

void RemoteModem::take(const std::string& line)
{
    const Json message = messageOf(line);
    if (message.contains("event")) {
        EventMessage event = eventOf(message);
        if (m_isSettingHandler)
            m_early.push_back({event.id, std::move(event.payload)});
        else
            m_notifier.queue({event.id, std::move(event.payload)});
    } else if (message.contains("error") && !message.contains("id")) {
        throw ProtocolError(message["error"].dump());
    } else if (!message.contains("hello")) {
        const std::int64_t id = idOf(message);
        m_isSettingHandler = m_isSettingHandler || id == m_registering;
        if (const auto found = m_waiting.find(id); found != m_waiting.end()) {
            // Done here, not in the waiting thread: the connection may be lost and remade before that thread runs.
            if (found->second->request != nullptr)
                remember(*found->second->request, message.value("code", -1));
            found->second->answer = message;
        }
        m_changed.notify_all();
    }
}

void RemoteModem::handlerIsSet()
{
    const std::scoped_lock lock(m_mutex);
    m_isSettingHandler = false;
    m_registering = -1;
    for (Notifier::Event& event : m_early)
        m_notifier.queue(std::move(event));
    m_early.clear();
}

/// Not the thread's id, which is reused when the thread has ended.
unsigned RemoteModem::threadNumber()
{
    static std::atomic<unsigned> last{0};
    thread_local const unsigned number = ++last;
    return number;
}

void RemoteModem::setHandler(bool isSet)
{
    std::unique_lock lock(m_mutex);
    m_state.hasHandler = isSet;
    if (!connect())
        return;
    const std::shared_ptr<SocketStream> stream = m_stream;
    stream->queue(lineOf({{"handler", isSet}}));
    lock.unlock();
    stream->flush();
}

void RemoteModem::elapse(milliseconds duration)
{
    pause(duration);
}

Json RemoteModem::control(Json message)
{
    const std::optional<Json> answer = exchange(std::move(message));
    if (!answer || answer->value("ok", false) == false) {
        complain(m_path, answer ? answer->value("error", "no answer") : "nobody serves the modem there");
        return Json::object();
    }
    return answer->value("result", Json::object());
}

void RemoteModem::reset()
{
    control({{"control", "reset"}, {"latencies", false}});
    const std::scoped_lock lock(m_mutex);
    m_state.isOpen = false;
    m_state.hasHandler = false;
}

void RemoteModem::setRealisticLatency(bool on)
{
    control({{"control", "latencies"}, {"on", on}});
}

std::string RemoteModem::setting(const std::string& key)
{
    const Json settings = control({{"control", "quoted-settings"}});
    return bytesOf(settings.value(charactersOf(key), "")).value_or("");
}

void RemoteModem::forceSetting(const std::string& key, const std::string& quoted)
{
    control({{"control", "set"}, {"key", charactersOf(key)}, {"quoted", charactersOf(quoted)}});
}

Engine RemoteModem::engine()
{
    const std::string state = control({{"control", "status"}}).value("engine", "off");
    return state == "running" ? Engine::Running : state == "starting" ? Engine::Starting : Engine::Off;
}

bool RemoteModem::isOpen()
{
    const Json status = control({{"control", "status"}});
    for (const Json& client : status.value("clients", Json::array()))
        if (client.value("pid", 0) == m_state.pid)
            return client.value("open", false);
    return false;
}

void RemoteModem::stop()
{
    const std::scoped_lock lock(m_mutex);
    m_stop = true;
    if (m_stream)
        m_stream->end();
    m_changed.notify_all();
}

}  // namespace arcsim
