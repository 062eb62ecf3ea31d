#include "seeds/Daemon.h"

#include "arcsim/LineServer.h"
#include "sim/held_clock.h"

#include <cerrno>
#include <cstdlib>
#include <future>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace seeds {
namespace {

using arcsim::Json;

/// The time of every daemon: what one remembers of time, the next one finds as it was.
constexpr std::chrono::steady_clock::time_point kStandingTime{std::chrono::hours(1000)};

/// What a process leaves that has no time to tidy up.
class Remains
{
public:
    explicit Remains(const std::string& socket) : m_socket(socket) { move("", ".kept"); }
    ~Remains() { move(".kept", ""); }
    Remains(const Remains&) = delete;
    Remains& operator=(const Remains&) = delete;

private:
    void move(const std::string& from, const std::string& to) const
    {
        for (const char* const file : {"", ".nmea", ".memory"})
            ::rename((m_socket + file + from).c_str(), (m_socket + file + to).c_str());
    }
    const std::string m_socket;
};

}  // namespace

Conversation::Conversation(const std::string& socket) : m_descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socket.copy(address.sun_path, sizeof address.sun_path - 1);
    if (::connect(m_descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("nobody serves at " + socket);
}

Conversation::~Conversation()
{
    ::close(m_descriptor);
}

void Conversation::say(const std::string& bytes) const
{
    if (::send(m_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(bytes.size()))
        throw std::runtime_error("the daemon takes nothing");
}

Json Conversation::hear()
{
    for (;;) {
        const std::size_t end = m_heard.find('\n');
        if (end != std::string::npos) {
            const std::string line = m_heard.substr(0, end);
            m_heard.erase(0, end + 1);
            return Json::parse(line);
        }
        pollfd ready{m_descriptor, POLLIN, 0};
        char bytes[4096];
        constexpr int kLimitMs = 30000;
        const ssize_t count = ::poll(&ready, 1, kLimitMs) > 0 ? ::recv(m_descriptor, bytes, sizeof bytes, 0) : 0;
        if (count <= 0)
            throw std::runtime_error("the daemon says nothing");
        m_heard.append(bytes, static_cast<std::size_t>(count));
    }
}

const std::string& Daemon::socketOfThisProcess()
{
    static const std::string path = [] {
        std::string made = "/tmp/seeds." + std::to_string(::getpid()) + ".socket";
        ::setenv("ARCSIM_SOCKET", made.c_str(), 1);
        return made;
    }();
    return path;
}

Daemon::Daemon(std::string socket, bool hasLatencies) : m_socket(std::move(socket)), m_hasLatencies(hasLatencies)
{
    serve();
}

Daemon::~Daemon()
{
    if (isServing())
        stop();
}

void Daemon::serve()
{
    std::promise<std::string> started;
    m_isKilled = false;
    m_thread = std::thread([&, this] {
        run([&](asio::io_context* context, const std::string& problem) {
            m_context = context;
            started.set_value(problem);
        });
    });
    const std::string problem = started.get_future().get();
    if (!problem.empty()) {
        m_thread.join();
        throw std::runtime_error(problem);
    }
    m_control = std::make_unique<Conversation>(m_socket);
}

void Daemon::run(const std::function<void(asio::io_context*, std::string)>& started)
{
    host_test::HeldClock clock;
    clock.goTo(kStandingTime);
    try {
        asio::io_context context(1);
        arcsim::ModemService::Options options;
        options.makeHost = [hasLatencies = m_hasLatencies] {
            auto host =
                std::make_unique<arcsim::ModemHost>(arcsim::ScenarioFile{}, arcsim::ScenarioClock::Mode::virtualTime);
            host->setRealisticLatency(hasLatencies);
            return host;
        };
        options.outputLink = output();
        options.memoryFile = m_socket + ".memory";
        options.scenarioName = "seeds";
        arcsim::LineServer server(context, m_socket);
        auto modem = std::make_unique<arcsim::ModemService>(context, std::move(options));
        server.start(*modem);
        started(&context, "");
        context.run();
        const auto remains = m_isKilled ? std::make_unique<Remains>(m_socket) : nullptr;
        modem.reset();
        server.stop();
    } catch (const std::exception& error) {
        started(nullptr, error.what());
    }
}

void Daemon::end(bool isKilled)
{
    m_isKilled = isKilled;
    m_context->stop();
    m_thread.join();
    m_control.reset();
}

Json Daemon::control(const std::string& name, const std::string& members)
{
    m_control->say(R"({"id":1,"control":")" + name + '"' + (members.empty() ? "" : ",") + members + "}\n");
    const Json answer = m_control->hear();
    if (!answer.value("ok", false))
        throw std::runtime_error("the daemon refuses " + name + ": " + answer.dump());
    return answer["result"];
}

}  // namespace seeds
