#pragma once

// A service with its peers in one thread: what they say goes through real sockets, and nothing happens on its own.

#include "arcsim/LineServer.h"
#include "arcsim/ModemService.h"
#include "arcsim/ReplayService.h"
#include "record/recording_text.h"

#include <asio/write.hpp>

#include <filesystem>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace service_test {

using arcsim::Json;

constexpr const char* kHello = R"({"hello":"client","name":"raw","pid":1,"open":false,"handler":false})";

inline std::unique_ptr<arcsim::PeerHandler> modemService(asio::io_context& context,
                                                         const arcsim::ScenarioFile& scenario = {})
{
    arcsim::ModemService::Options options;
    options.makeHost = [scenario] {
        auto host = std::make_unique<arcsim::ModemHost>(scenario, arcsim::ScenarioClock::Mode::real);
        host->setRealisticLatency(false);
        return host;
    };
    return std::make_unique<arcsim::ModemService>(context, std::move(options));
}

inline std::unique_ptr<arcsim::PeerHandler> replayService(asio::io_context& context, const arcsim::Recording& recording)
{
    return std::make_unique<arcsim::ReplayService>(context, recording, arcsim::ReplayService::Options{});
}

class Served
{
public:
    class Connection
    {
    public:
        Connection(asio::io_context& context, const std::string& path) : m_socket(context)
        {
            m_socket.connect(asio::local::stream_protocol::endpoint(path));
            m_socket.non_blocking(true);
        }
        /// Writes what there is, also when the other side has hung up.
        void say(std::string_view line)
        {
            asio::error_code ignored;
            asio::write(m_socket, asio::buffer(std::string(line) + "\n"), ignored);
        }
        void hangUp() { m_socket.close(); }
        /// Whether anything came, the end included.
        bool hear()
        {
            if (m_isOver || !m_socket.is_open())
                return false;
            std::array<char, 65536> buffer{};
            asio::error_code error;
            const std::size_t count = m_socket.read_some(asio::buffer(buffer), error);
            if (error == asio::error::would_block)
                return false;
            m_isOver = static_cast<bool>(error);
            m_heard.add(std::string_view(buffer.data(), count));
            while (const auto line = m_heard.take())
                m_lines.push_back(*line);
            return true;
        }
        /// What has come since the last time.
        std::vector<std::string> take() { return std::exchange(m_lines, {}); }
        bool isOver() const { return m_isOver; }

    private:
        asio::local::stream_protocol::socket m_socket;
        arcsim::LineBuffer m_heard{};
        std::vector<std::string> m_lines{};
        bool m_isOver = false;
    };

    Served() : m_path("/tmp/service." + std::to_string(getpid()) + ".socket"), m_server(m_context, m_path) {}

    asio::io_context& context() { return m_context; }
    void serve(std::unique_ptr<arcsim::PeerHandler> service)
    {
        m_service = std::move(service);
        m_server.start(*m_service);
    }
    /// As when a program comes to its end while handlers of expired timers are on their way.
    void dropService() { m_service.reset(); }

    Connection& connect() { return m_connections.emplace_back(m_context, m_path); }
    Connection& greet()
    {
        Connection& made = connect();
        made.say(kHello);
        settle();
        made.take();
        return made;
    }
    /// Until there is nothing more to do, apart from what has a time to wait for.
    void settle()
    {
        for (bool goesOn = true; goesOn;) {
            m_context.restart();
            goesOn = m_context.poll() > 0;
            for (Connection& connection : m_connections)
                goesOn = connection.hear() || goesOn;
        }
    }

private:
    asio::io_context m_context{1};
    const std::string m_path;
    std::unique_ptr<arcsim::PeerHandler> m_service{};
    arcsim::LineServer m_server;  // goes before the service that it tells of its peers
    std::list<Connection> m_connections{};
};

}  // namespace service_test
