#include "record/Handlers.h"

#include "record/Complaint.h"
#include "record/Recorder.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <utility>

namespace arcrecord {

namespace {

constexpr std::size_t kPlaces = 16;

std::array<std::atomic<ArcNotificationHandler>, kPlaces> g_handlers{};

/// Preserves the application's errno before, in and after the handler.
template <std::size_t Place>
void recordingHandler(int id, void* data, int length)
{
    const ArcNotificationHandler handler = g_handlers[Place].load();
    const int errnoBefore = errno;
    const Recorder::Begun begun = Recorder::instance().beginEvent(id, data, length);
    errno = errnoBefore;
    handler(id, data, length);
    const int errnoAfter = errno;
    Recorder::instance().endEvent(begun);
    errno = errnoAfter;
}

template <std::size_t... Places>
constexpr std::array<ArcNotificationHandler, kPlaces> recordingHandlers(std::index_sequence<Places...>)
{
    return {recordingHandler<Places>...};
}

constexpr auto kRecordingHandlers = recordingHandlers(std::make_index_sequence<kPlaces>());

}  // namespace

ArcNotificationHandler recordingHandlerFor(ArcNotificationHandler handler)
{
    if (handler == nullptr)
        return nullptr;
    for (std::size_t place = 0; place < kPlaces; ++place) {
        ArcNotificationHandler present = nullptr;
        if (g_handlers[place].compare_exchange_strong(present, handler) || present == handler)
            return kRecordingHandlers[place];
    }
    static std::atomic<bool> said{false};
    if (!said.exchange(true))
        complain("arcrecord: more than 16 handlers were registered; events of the further ones are not recorded\n");
    return handler;
}

}  // namespace arcrecord
