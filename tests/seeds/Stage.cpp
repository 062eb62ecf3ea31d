#include "seeds/Stage.h"

#include "sim/client/ArcSim.h"
#include "support/Pauses.h"

#include <dlfcn.h>
#include <pthread.h>

namespace seeds {
namespace {

thread_local Stage* t_toldOfJoins = nullptr;

std::string withoutElapsedTime(std::string line)
{
    const std::string before = " took ";
    const std::size_t begin = line.rfind(before);
    const std::size_t end = line.find(" ms: ", begin == std::string::npos ? 0 : begin);
    if (begin != std::string::npos && end != std::string::npos)
        line.replace(begin + before.size(), end - begin - before.size(), "%u");
    return line;
}

}  // namespace

Stage::Stage() : m_test(std::this_thread::get_id()), m_notifier(arcsim::notificationThread())
{
    support::pauses::reset();
    support::pauses::observe([this](const support::pauses::Pause& pause, std::size_t) {
        add({Entry::Kind::pause, true,
             "pause " + std::to_string(pause.seconds) + " s " + std::to_string(pause.nanoseconds) + " ns"});
    });
}

Stage::~Stage()
{
    support::pauses::reset();
}

void Stage::line(int level, const char* text)
{
    add({Entry::Kind::line, true, std::to_string(level) + ' ' + withoutElapsedTime(text)});
}

void Stage::answered(int request, const std::string& text)
{
    add({Entry::Kind::answer, true, text, request});
}

void Stage::event(const std::string& text)
{
    add({Entry::Kind::event, true, text});
}

void Stage::add(Entry entry)
{
    const auto self = std::this_thread::get_id();
    std::unique_lock lock(m_mutex);
    if (self == m_notifier) {
        entry.isWorkers = false;
        entry.kind = Entry::Kind::event;
        m_events.push_back(std::move(entry));
        return;
    }
    entry.isWorkers = self != m_test;
    m_entries.push_back(std::move(entry));
    if (self == m_test)
        return;
    m_isHeld = true;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return !m_isHeld; });
}

void Stage::note(Entry entry)
{
    const std::lock_guard lock(m_mutex);
    m_entries.push_back(std::move(entry));
}

void Stage::takeEvents()
{
    const std::lock_guard lock(m_mutex);
    m_entries.insert(m_entries.end(), m_events.begin(), m_events.end());
    m_events.clear();
}

bool Stage::isMoment()
{
    constexpr std::chrono::microseconds kLittle{200};
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, kLittle, [this] { return m_isHeld; });
    return m_isHeld;
}

void Stage::release()
{
    const std::lock_guard lock(m_mutex);
    m_isHeld = false;
    m_changed.notify_all();
}

void Stage::joins()
{
    const std::lock_guard lock(m_mutex);
    m_hasJoiner = true;
}

bool Stage::hasJoiner() const
{
    const std::lock_guard lock(m_mutex);
    return m_hasJoiner;
}

void Stage::forgetJoiner()
{
    const std::lock_guard lock(m_mutex);
    m_hasJoiner = false;
}

Destroying::Destroying(Stage& stage)
{
    t_toldOfJoins = &stage;
}

Destroying::~Destroying()
{
    t_toldOfJoins = nullptr;
}

}  // namespace seeds

/// The library waits for its worker's end by this function, which it finds here first.
extern "C" int pthread_join(pthread_t thread, void** result)
{
    static const auto next = reinterpret_cast<int (*)(pthread_t, void**)>(::dlsym(RTLD_NEXT, "pthread_join"));
    if (seeds::t_toldOfJoins != nullptr)
        seeds::t_toldOfJoins->joins();
    return next(thread, result);
}
