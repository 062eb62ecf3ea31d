#pragma once

// The library's contract for a run, compared step by step with the observations.

#include "seeds/ModemModel.h"
#include "seeds/Play.h"
#include "support/ResultText.h"

#include <deque>
#include <map>
#include <stdexcept>
#include <string>

namespace seeds {

/// What was seen is not what had to come.
class Wrong : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The library as its contract describes it. It goes through what was seen in a run: every task of its own queue asks
/// for exactly the lines, pauses and answers that have to come, and everything else is wrong.
class Oracle
{
public:
    Oracle(const Program& program, const std::vector<Entry>& entries)
        : m_entries(entries), m_modem(program.hasLatencies)
    {
    }
    /// Throws Wrong.
    void check();

    struct Counts
    {
        int requests = 0;
        int answers = 0;
        int attempts = 0;
        int dropped = 0;
    };
    const Counts& counts() const { return m_counts; }

private:
    struct Waiting
    {
        Task task{};
        int request = 0;
        int moment = 0;
    };
    enum class End
    {
        success,
        refused,
        cancelled,
        gaveUp,
    };
    struct Called
    {
        int code = 32;
        End end{};
        ModemReply reply{};
    };

    // Through what was seen
    const Entry* next();
    const Entry& take(Entry::Kind kind, const std::string& expected);
    void apply(const Entry& entry);
    void takeOwn(Entry::Kind kind, const std::string& text, int request);
    [[noreturn]] void fail(const std::string& expected) const;
    void passPending() { next(); }

    // The library
    void apply(const Step& step, const Entry& entry);
    void request(const Step& step, const Entry& entry);
    void queue(const Task& task, const Entry& entry);
    void event(const Entry& entry);
    void look(const Entry& entry) const;
    void requireEvents(const Step& step);
    void perform(const Waiting& waiting);
    void openOrClose(const Waiting& waiting);
    void readSetting(const Waiting& waiting);
    void queryLsta(const Waiting& waiting);
    Called call(const Waiting& waiting);
    int attempt(const Waiting& waiting, int& retriesLeft, Called& called);
    bool tellsOfGivingUp(const Waiting& waiting) const;
    void answer(const Waiting& waiting, const std::string& text);

    const std::vector<Entry>& m_entries;
    std::size_t m_next = 0;
    Counts m_counts{};

    ModemModel m_modem;
    std::deque<Waiting> m_waiting{};
    std::string m_running{};  ///< as its task is named; empty: none
    bool m_isActive = false;
    bool m_isOpen = false;
    bool m_isEnding = false;               ///< the object is being destroyed
    int m_notified = -1;                   ///< whose listener, by its request; -1: nobody's
    std::map<int, int> m_lstaListeners{};  ///< by technology
};

}  // namespace seeds
