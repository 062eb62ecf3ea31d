#include "seeds/Reader.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace seeds {
namespace {

/// Dollar, text, star, the exclusive or of the text's bytes as two digits, carriage return.
bool isSentence(const std::string& line)
{
    const std::size_t star = line.rfind('*');
    if (line.size() < 5 || line.front() != '$' || line.back() != '\r' || star != line.size() - 4)
        return false;
    unsigned sum = 0;
    for (std::size_t i = 1; i < star; ++i)
        sum ^= static_cast<unsigned char>(line[i]);
    char digits[3] = {};
    std::snprintf(digits, sizeof digits, "%02X", sum & 0xffU);
    return line.compare(star + 1, 2, digits) == 0;
}

/// Of a line that has just begun.
bool beginsEpoch(const std::string& line)
{
    return (line.size() == 6 && line.compare(3, 3, "RMC") == 0) || line == "$PSIM,T";
}

}  // namespace

std::uint64_t digestOf(const std::string& text, std::uint64_t before)
{
    for (const char c : text)
        before = (before ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    return before;
}

Reader::Reader(const std::string& terminal)
    : m_terminal(::open(terminal.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)), m_digest(kNoDigest)
{
}

Reader::~Reader()
{
    ::close(m_terminal);
}

void Reader::read(int epochs, const std::function<void()>& pump)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (m_epochs <= epochs) {
        if (take())
            continue;
        if (std::chrono::steady_clock::now() > limit) {
            m_torn = "nothing comes after '" + m_line + "'";
            return;
        }
        pump();
        pollfd ready{m_terminal, POLLIN, 0};
        ::poll(&ready, 1, 1);
    }
}

void Reader::readRest()
{
    while (take()) {
    }
}

bool Reader::take()
{
    char bytes[4];  // less than an epoch, so that the last one is never taken whole
    const ssize_t count = ::read(m_terminal, bytes, sizeof bytes);
    for (ssize_t i = 0; i < count; ++i)
        takeByte(bytes[i]);
    return count > 0;
}

void Reader::takeByte(char byte)
{
    if (byte != '\n') {
        m_line += byte;
        m_epochs += beginsEpoch(m_line) ? 1 : 0;
        return;
    }
    if (!isSentence(m_line) && m_torn.empty())
        m_torn = m_line;
    m_digest = digestOf(m_line, m_digest);
    ++m_sentences;
    m_line.clear();
}

}  // namespace seeds
