#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace support {

/// Records log lines, pauses, answers to requests and events of all threads in one order. All operations may be called
/// from any thread.
class Journal
{
public:
    enum class Kind
    {
        line,    ///< "4 KelArc::...": level, blank, line; the milliseconds of a result line read "%u"
        pause,   ///< "pause 0 s 250000000 ns"
        answer,  ///< "answer(0, true)"
        event,   ///< as the test writes it
    };

    struct Entry
    {
        Kind kind;
        std::string text;
        std::string raw;  ///< a log line exactly as it came, without its level; otherwise as text
        std::thread::id thread;
    };

    /// The log callback to construct an object with.
    std::function<void(int, const char*)> logCallback();

    void add(Kind kind, std::string text);
    void clear();

    std::vector<Entry> entries() const;
    std::vector<Entry> entries(Kind kind) const;
    std::vector<std::string> texts() const;
    std::vector<std::string> texts(Kind kind) const;
    std::size_t count(Kind kind) const;

    /// Waits until there are `count` entries of that kind; false when 30 seconds passed first.
    bool waitFor(Kind kind, std::size_t count) const;

private:
    void append(Entry entry);

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<Entry> m_entries;  // guarded by m_mutex
};

}  // namespace support
