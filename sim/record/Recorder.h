#pragma once

#include "record/JsonLine.h"
#include "record/OutputFile.h"
#include "record/RealLibrary.h"

#include <atomic>
#include <chrono>
#include <mutex>

namespace arcrecord {

/// Writes down the calls and events of a process, a line when each begins and one when it ends: a call that hangs or
/// kills the process has its first line. All functions may be called from any thread; nothing is locked between them.
///
/// There is one for the process. It takes no memory after the first call, and it has no destructor: threads of the
/// application may still make calls while the process exits.
class Recorder
{
public:
    using Clock = std::chrono::steady_clock;

    /// What was noted when a call or a handler began.
    struct Begun
    {
        unsigned long long number = 0;
        unsigned generation = 0;  ///< of the process in which it began
        Clock::time_point at{};
    };

    constexpr Recorder() = default;
    static Recorder& instance();

    /// `arguments` writes them into the Fields that it is given.
    template <typename Arguments>
    Begun begin(Function function, const Arguments& arguments)
    {
        lookForLibrary();
        const Turn turn(*this);
        const unsigned long long number = ++m_calls;
        if (m_file.isOpen()) {
            {
                Fields fields(m_line);
                fields.number("n", static_cast<long long>(number));
                addTimeAndThread(fields);
                fields.text("call", nameOf(function));
                fields.key("args");
                Fields inner(m_line);
                arguments(inner);
            }
            m_line.end();
        }
        return {number, m_generation, Clock::now()};
    }

    /// `outputs` likewise. Called at once after the real function.
    template <typename Outputs>
    void end(const Begun& begun, int code, const Outputs& outputs)
    {
        const Clock::duration took = Clock::now() - begun.at;
        const Turn turn(*this);
        if (!m_file.isOpen() || begun.generation != m_generation)
            return;
        {
            Fields fields(m_line);
            fields.number("n", static_cast<long long>(begun.number));
            addTimeAndThread(fields);
            fields.number("code", code);
            fields.key("out");
            {
                Fields inner(m_line);
                outputs(inner);
            }
            addTook(fields, took);
        }
        m_line.end();
    }

    Begun beginEvent(int id, const void* data, int length);
    void endEvent(const Begun& begun);

    /// Called by fork() in the child.
    static void startAnewInChild();

    /// Known from the first begin() on.
    const RealLibrary& library() const { return m_library; }

private:
    /// The time in which one thread has the recorder for itself. The thread cannot be cancelled then: it would leave
    /// everything locked.
    class Lock
    {
    public:
        explicit Lock(Recorder& recorder);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        Recorder& m_recorder;
        int m_cancelState = 0;
    };
    /// Such a time in which something is written down.
    class Turn : private Lock
    {
    public:
        explicit Turn(Recorder& recorder);
    };

    void lookForLibrary();
    void start();
    void addTimeAndThread(Fields& fields);
    static void addTook(Fields& fields, Clock::duration took);
    unsigned threadNumber();

    std::mutex m_mutex{};
    // all guarded by m_mutex; the library's functions do not change any more once they were looked for
    OutputFile m_file{};
    JsonLine m_line{m_file};
    RealLibrary m_library{};
    Clock::time_point m_began{};
    unsigned long long m_calls = 0;
    unsigned m_threads = 0;
    unsigned m_generation = 1;  ///< of processes: another one in the child of a fork
    bool m_started = false;
    std::atomic<bool> m_lookedForLibrary{false};  ///< written with m_mutex held
};

}  // namespace arcrecord
