#pragma once

// The application's side of the receiver's terminal.

#include "receiver/ReceiverTypes.h"

#include "sim/receiver_support.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace receiver_test {

inline arcsim::ReceiverSettings fast()
{
    arcsim::ReceiverSettings settings;
    settings.period = std::chrono::milliseconds(100);
    return settings;
}

/// Keeps everything that it has read.
class Reader
{
public:
    explicit Reader(const std::string& path) : m_file(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK))
    {
        if (m_file < 0)
            throw std::runtime_error("cannot open " + path);
    }
    ~Reader() { ::close(m_file); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    int file() const { return m_file; }
    const std::string& received() const { return m_received; }

    /// What is there already.
    std::string take(std::size_t most = 65536)
    {
        std::string bytes(most, '\0');
        const ssize_t count = ::read(m_file, bytes.data(), bytes.size());
        bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        m_received += bytes;
        return bytes;
    }

    /// Reads until so many RMC sentences have begun, so all epochs before the last of them are complete.
    bool readEpochs(std::size_t count)
    {
        // Everything that is there, and no more looked at than needed: a busy machine may have piled up a lot.
        return await([&] {
            while (!take().empty()) {
            }
            return begunEpochs() >= count;
        });
    }

    /// RMC sentences in the complete lines.
    std::size_t begunEpochs()
    {
        const std::size_t end = m_received.rfind('\n');
        for (std::size_t at; (at = m_received.find("RMC,", m_counted)) != std::string::npos && at < end;
             m_counted = at + 1)
            ++m_begun;
        return m_begun;
    }

    std::vector<std::string> rmcTimes() const
    {
        std::vector<std::string> times;
        const std::string complete = m_received.substr(0, m_received.rfind('\n') + 1);
        for (const Fields& rmc : sentences(complete, "RMC"))
            times.push_back(rmc[1]);
        return times;
    }

    /// All lines but the last, which may still be on its way.
    std::vector<Line> completeLines() const { return linesOf(m_received.substr(0, m_received.rfind('\n') + 1)); }

private:
    int m_file;
    std::string m_received;
    std::size_t m_counted = 0;  // up to here m_begun is counted
    std::size_t m_begun = 0;
};

inline void expectValid(const std::vector<Line>& lines)
{
    for (const Line& line : lines)
        EXPECT_TRUE(line.valid) << '"' << line.text << '"';
}

}  // namespace receiver_test
