#pragma once

// What happens in a run, in one order, and the worker's moments: whenever the library calls the application back on
// its worker, or pauses there, the worker waits until the test lets it go on. So it is the test that decides between
// which two steps of the worker something else happens.

#include "seeds/Program.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace seeds {

struct Entry
{
    enum class Kind
    {
        line,  ///< of the log, with its level; the milliseconds of a call read "%u"
        pause,
        answer,    ///< of `request`
        event,     ///< a notification or an LSTA, or a log line that tells of one that nobody wants
        step,      ///< what the test does next; `request` is its number
        look,      ///< how many tasks wait and which one runs
        hang,      ///< a call of the worker hangs
        unlisten,  ///< the test has taken the handler of events away
        passed,    ///< `request` is a number of milliseconds
        served,    ///< the daemon is there again
        idle,
        destroyed,  ///< the object; a new one is there
    };
    Kind kind{};
    bool isWorkers = false;  ///< else it is the test's, or it came while the test was doing something
    std::string text{};
    int request = 0;
    int moment = 0;  ///< requests of one reading of the clock have the same, other than 0
    const Step* step = nullptr;
};

class Stage
{
public:
    /// For the thread that makes it.
    Stage();
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    // From the library, on any thread.
    void line(int level, const char* text);
    void answered(int request, const std::string& text);
    void event(const std::string& text);
    /// This thread destroys the object and now waits for the worker.
    void joins();

    // For the test's thread.
    void note(Entry entry);
    /// Writes down the events that have come on the notification thread since the last time.
    void takeEvents();
    /// Waits a little. True when the worker waits for release().
    bool isMoment();
    void release();
    bool hasJoiner() const;
    void forgetJoiner();
    const std::vector<Entry>& entries() const { return m_entries; }

private:
    void add(Entry entry);

    const std::thread::id m_test;
    const std::thread::id m_notifier;
    mutable std::mutex m_mutex{};
    std::condition_variable m_changed{};
    // guarded by m_mutex
    std::vector<Entry> m_entries{};
    std::vector<Entry> m_events{};
    bool m_isHeld = false;
    bool m_hasJoiner = false;
};

/// While there is one, the thread's waiting for the end of another thread is told to the stage.
class Destroying
{
public:
    explicit Destroying(Stage& stage);
    ~Destroying();
    Destroying(const Destroying&) = delete;
    Destroying& operator=(const Destroying&) = delete;
};

}  // namespace seeds
