#pragma once

// The test's model of the simulated modem, derived from docs/simulator.md and not from the modem's code.

#include "seeds/Program.h"

#include <array>
#include <deque>
#include <map>
#include <optional>
#include <string>

namespace seeds {

/// What the modem answers to one call.
struct ModemReply
{
    int code = 0;
    bool mayBeBusy = false;  ///< 15 is as right, for the engine may be starting
    bool hangs = false;      ///< then ModemModel::codeOfHang() is the code, when it is over
    std::string text{};
    bool isChanged = false;                     ///< a setting by a write
    int indicator = 0;                          ///< of an LSTA
    std::optional<std::pair<int, int>> lsta{};  ///< status and value, if they are known
};

class ModemModel
{
public:
    explicit ModemModel(bool hasLatencies) : m_hasLatencies(hasLatencies) { startAnew(); }

    ModemReply call(const Task& task);
    /// The answer came: what it changes if it was 0.
    void called(const Task& task, const ModemReply& reply, int code);

    void apply(const Step& step);
    void served() { m_isServing = true; }
    void passed(int ms) { m_outageMs -= ms; }
    void unlisten() { m_hasHandler = false; }

    bool isReachable() const { return m_isServing && m_outageMs <= 0; }
    /// Events reach the library.
    bool isHeard() const { return isReachable() && m_isOpen && m_hasHandler; }
    int codeOfHang() const { return m_codeOfHang; }

private:
    struct Fault
    {
        const Step* step;
        int left;
    };
    struct Effect
    {
        std::optional<int> code{};
        bool hangs = false;
        bool isOtherSystem = false;
        bool isPadded = false;
        bool isUnquoted = false;
    };
    void startAnew();
    Effect takeFaults(const std::string& function);
    ModemReply usual(const Task& task) const;
    ModemReply read(const Task& task) const;
    ModemReply write(const Task& task) const;

    const bool m_hasLatencies;
    bool m_isServing = true;
    bool m_isOpen = false;  ///< the connection of this process
    bool m_hasHandler = false;
    int m_outageMs = 0;  ///< until it is over
    int m_codeOfHang = 0;
    std::map<std::string, std::string> m_settings{};
    std::deque<Fault> m_faults{};                 ///< the latest first
    std::map<int, std::pair<int, int>> m_lsta{};  ///< status and value by technology, where they were set
};

}  // namespace seeds
