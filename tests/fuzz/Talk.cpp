#include "fuzz/Talk.h"

#include <string>

namespace fuzz {

namespace {

class Talk
{
public:
    using Pass = std::function<void(std::chrono::milliseconds)>;
    Talk(Peers& peers, const Pass& pass) : m_peers(peers), m_pass(pass) {}

    /// Takes the first byte, with what belongs to it; returns the rest.
    std::string_view take(std::string_view input)
    {
        const char first = input.front();
        if (first == 0x1C && input.size() >= 3) {
            m_said.append(256U * static_cast<unsigned char>(input[2]), input[1]);
            return input.substr(3);
        }
        if (first < 0x19 || first > 0x1F || first == 0x1B || first == 0x1C) {
            m_said += first;
            return input.substr(1);
        }
        arrive();
        if (first == 0x1A && input.size() >= 2) {
            m_pass(std::chrono::milliseconds(10 * static_cast<unsigned char>(input[1])));
            return input.substr(2);
        }
        if (first == 0x19)
            m_peers.settle();
        else if (first == 0x1E)
            m_peer = (m_peer + 1) % Peers::kCount;
        else if (first == 0x1F)
            m_peers.hangUp(m_peer);
        return input.substr(1);
    }
    void arrive()
    {
        m_peers.say(m_peer, m_said);
        m_said.clear();
    }

private:
    Peers& m_peers;
    const Pass& m_pass;
    std::size_t m_peer = 0;
    std::string m_said{};
};

}  // namespace

void talk(Peers& peers, std::string_view input, const std::function<void(std::chrono::milliseconds)>& pass)
{
    Talk talk(peers, pass);
    while (!input.empty())
        input = talk.take(input);
    talk.arrive();
}

}  // namespace fuzz
