#include "record/Recorder.h"

#include <cerrno>
#include <cstdio>
#include <new>
#include <pthread.h>
#include <type_traits>
#include <unistd.h>

namespace arcrecord {

namespace {

static_assert(std::is_trivially_destructible_v<Recorder>, "calls may come while the process exits");
Recorder g_recorder;

struct ThreadNumber
{
    unsigned generation;
    unsigned number;
};
thread_local ThreadNumber t_number{0, 0};

long long microseconds(Recorder::Clock::duration time)
{
    return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

/// The C library's own conversion takes a lock that another thread of the parent may hold for ever in a forked child.
void addUtc(Fields& fields)
{
    using namespace std::chrono;
    const auto now = system_clock::now().time_since_epoch();
    const long long ms = duration_cast<milliseconds>(now).count();
    const long long dayMs = 24LL * 60 * 60 * 1000;
    const long long inDay = ms % dayMs;
    // Years that begin in March have their leap day at the end; 400 of them have 146097 days.
    const long long day = ms / dayMs + 719468;  // since March 1st of the year 0
    const long long inEra = day % 146097;
    const long long yearOfEra = (inEra - inEra / 1460 + inEra / 36524 - inEra / 146096) / 365;
    const long long inYear = inEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const long long fromMarch = (5 * inYear + 2) / 153;
    const long long month = fromMarch < 10 ? fromMarch + 3 : fromMarch - 9;
    const long long year = day / 146097 * 400 + yearOfEra + (month <= 2 ? 1 : 0);
    const long long dayOfMonth = inYear - (153 * fromMarch + 2) / 5 + 1;
    std::array<char, 160> text{};
    std::snprintf(text.data(), text.size(), "%04lld-%02lld-%02lldT%02lld:%02lld:%02lld.%03lldZ", year, month,
                  dayOfMonth, inDay / 3600000, inDay / 60000 % 60, inDay / 1000 % 60, inDay % 1000);
    fields.text("utc", text.data());
}

/// Runs when the library is loaded, since another thread may fork during the very first call.
__attribute__((constructor)) void watchForks()
{
    pthread_atfork(nullptr, nullptr, Recorder::startAnewInChild);
}

}  // namespace

Recorder& Recorder::instance()
{
    return g_recorder;
}

Recorder::Lock::Lock(Recorder& recorder) : m_recorder(recorder)
{
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_cancelState);
    m_recorder.m_mutex.lock();
}

Recorder::Turn::Turn(Recorder& recorder) : Lock(recorder)
{
    if (!recorder.m_started)
        recorder.start();
}

Recorder::Lock::~Lock()
{
    m_recorder.m_mutex.unlock();
    pthread_setcancelstate(m_cancelState, nullptr);
}

/// Threads that come here at the same time all look for the library; the first result counts.
void Recorder::lookForLibrary()
{
    if (m_lookedForLibrary.load())
        return;
    RealLibrary found;
    found.find();
    bool isFirst = false;
    {
        const Lock lock(*this);
        isFirst = !m_lookedForLibrary.load();
        if (isFirst)
            m_library = found;
        m_lookedForLibrary.store(true);
    }
    if (isFirst)
        found.complain();
}

/// Runs at the first call, not when the library is loaded: the environment may load it into programs that make no
/// calls.
void Recorder::start()
{
    m_started = true;
    m_began = Clock::now();
    m_file.open();
    if (!m_file.isOpen())
        return;
    {
        Fields fields(m_line);
        fields.number("recording", 1);
        addUtc(fields);
        fields.number("pid", getpid());
        fields.text("program", program_invocation_short_name);
        fields.text("library", m_library.path());
    }
    m_line.end();
}

/// Other threads of the parent may have been anywhere, even within a Turn; the child starts from a clean state.
void Recorder::startAnewInChild()
{
    Recorder& own = g_recorder;
    new (&own.m_mutex) std::mutex;
    own.m_file.leaveToParent();
    own.m_line.drop();
    own.m_calls = 0;
    own.m_threads = 0;
    ++own.m_generation;
    own.m_started = false;
}

unsigned Recorder::threadNumber()
{
    if (t_number.generation != m_generation)
        t_number = {m_generation, ++m_threads};
    return t_number.number;
}

void Recorder::addTimeAndThread(Fields& fields)
{
    fields.number("us", microseconds(Clock::now() - m_began));
    fields.number("thread", threadNumber());
}

void Recorder::addTook(Fields& fields, Clock::duration took)
{
    fields.number("tookUs", microseconds(took));
}

Recorder::Begun Recorder::beginEvent(int id, const void* data, int length)
{
    const Turn turn(*this);
    if (m_file.isOpen()) {
        {
            Fields fields(m_line);
            addTimeAndThread(fields);
            fields.number("event", id);
            fields.number("length", length);
            if (data == nullptr)
                fields.text("data", nullptr);
            else
                fields.hex("data", data, length > 0 ? static_cast<std::size_t>(length) : 0);
        }
        m_line.end();
    }
    return {0, m_generation, Clock::now()};
}

void Recorder::endEvent(const Begun& begun)
{
    const Clock::duration took = Clock::now() - begun.at;
    const Turn turn(*this);
    if (!m_file.isOpen() || begun.generation != m_generation)
        return;
    {
        Fields fields(m_line);
        addTimeAndThread(fields);
        fields.flag("handled", true);
        addTook(fields, took);
    }
    m_line.end();
}

}  // namespace arcrecord
