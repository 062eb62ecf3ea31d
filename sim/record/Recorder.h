#pragma once

#include "record/JsonLine.h"
#include "record/OutputFile.h"
#include "record/RealLibrary.h"

#include <atomic>
#include <chrono>
#include <mutex>

namespace arcrecord {

/// Records the calls and events of a process, with one line when each begins and one when it ends. So a call that hangs
/// or kills the process has its first line. All functions may be called from any thread; no lock is held between calls.
///
/// There is one object per process. It allocates nothing after the first call and has no destructor: threads of the
/// application may still make calls while the process exits.
class Recorder
{
public:
    using Clock = std::chrono::steady_clock;

    /// Data noted when a call or a handler began.
    struct Begun
    {
        unsigned long long number = 0;
        unsigned generation = 0;  ///< generation of the process in which the call began
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

    /// `outputs` writes them likewise. Called right after the real function.
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
    /// Exclusive use of the recorder by one thread. The thread cannot be cancelled meanwhile, since it would leave
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
    /// A Turn in which a line is written.
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
    // all guarded by m_mutex; the library's functions do not change once they have been looked up
    OutputFile m_file{};
    JsonLine m_line{m_file};
    RealLibrary m_library{};
    Clock::time_point m_began{};
    unsigned long long m_calls = 0;
    unsigned m_threads = 0;
    unsigned m_generation = 1;  ///< differs in the child of a fork
    bool m_started = false;
    std::atomic<bool> m_lookedForLibrary{false};  ///< written with m_mutex held
};

}  // namespace arcrecord
