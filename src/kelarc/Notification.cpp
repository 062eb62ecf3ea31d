#include "kelarc/Notification.h"
#include "arc/ArcRilD.h"
#include "kelarc/Call.h"
#include "kelarc/CallPolicy.h"
#include "kelarc/Callback.h"
#include "kelarc/KelArc.h"
#include "kelarc/LstaTable.h"
#include "kelarc/names.h"

#include <cstring>
#include <new>
#include <utility>

namespace kelarc {
namespace {

constexpr int kLstaEvent = 34;

struct EventRow
{
    int arcId;
    NOTIFY_ID notifyId;
};

// 73 and 74 cross over to 5 and 4: published.
constexpr EventRow kEvents[] = {
    {22, NOTIFY_ID::EVENT_22}, {72, NOTIFY_ID::EVENT_72}, {73, NOTIFY_ID::EVENT_73},
    {74, NOTIFY_ID::EVENT_74}, {75, NOTIFY_ID::EVENT_75},
};

/// Payloads may be unaligned, so fields are copied out.
template <typename Field>
Field readField(const void* payload, std::size_t offset)
{
    Field field;
    std::memcpy(&field, static_cast<const char*>(payload) + offset, sizeof field);
    return field;
}

/// The callable that getNotificationCB() shows; copies of it share the callback too.
struct SharedCall
{
    std::shared_ptr<std::function<void(NOTIFY_ID, void*, int)>> target;

    void operator()(NOTIFY_ID id, void* data, int length) const { (*target)(id, data, length); }
};

}  // namespace

void KelArc::setNotificationCB(std::function<void(NOTIFY_ID, void*, int)>&& callback)
{
    // Allocates first: if that fails, nothing has happened. The body is small enough to need no memory.
    std::string name = taskName(kRegisterNotificationCall, {"ARC_RegisterNotification()"});
    NotificationCallback replacement;
    if (std::shared_ptr<NotificationCallback> target = heldApart(std::move(callback)))
        replacement = SharedCall{std::move(target)};

    {
        const std::lock_guard<std::mutex> lock(m_callbackMutex);
        m_notificationCb.swap(replacement);
    }
    replacement = nullptr;  // the old callback is the user's: destroy it without the lock, before the task can run
    addTask(std::move(name), [this](task::ExecutionReason) {
        runCall(kRegisterNotificationCall, [] { return ARC_RegisterNotification(onArcNotification); });
    });
}

/// The notification callback as it is now; null when there is none.
std::shared_ptr<KelArc::NotificationCallback> KelArc::holdNotificationCallback() const
{
    const std::lock_guard<std::mutex> lock(m_callbackMutex);
    if (const auto* const shared = m_notificationCb.target<SharedCall>())
        return shared->target;
    if (!m_notificationCb)
        return nullptr;
    try {
        return std::make_shared<NotificationCallback>(m_notificationCb);  // somebody assigned to it
    } catch (const std::bad_alloc&) {
        return nullptr;  // the event is lost; an exception in the client library would do more harm
    }
}

void onArcNotification(int id, void* data, int length)
{
    KelArc* const self = KelArc::s_instance;
    if (self == nullptr)
        return;
    if (id == kLstaEvent) {
        self->notifyLsta(data, length);
        return;
    }
    const std::shared_ptr<KelArc::NotificationCallback> notify = self->holdNotificationCallback();
    if (!notify)
        return;
    for (const EventRow& row : kEvents)
        if (row.arcId == id)
            (*notify)(row.notifyId, data, length);
}

void KelArc::notifyLsta(const void* data, int)
{
    if (data == nullptr)
        return;  // no data names a system
    const LstaTech* const row = lstaTechOfIndicator(readField<std::int32_t>(data, offsetof(LstaInfo, indicator)));
    if (row == nullptr)
        return;
    std::shared_ptr<LstaCallback> notify;
    {
        const std::lock_guard<std::mutex> lock(m_callbackMutex);
        if (!m_notificationCb)
            return;  // without a callback for the other events, LSTA notifications are dropped too: published
        notify = lstaCallbackOf(*row);
    }
    if (!notify) {
        log(4, kSource, "notifyLsta", row->missingCallbackLine, "%s", row->missingCallbackText);
        return;
    }
    (*notify)(*lsta::typeOf(row->tech), readField<std::int32_t>(data, offsetof(LstaInfo, status)),
              readField<double>(data, offsetof(LstaInfo, value)));
}

}  // namespace kelarc
