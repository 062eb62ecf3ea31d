#include "kelarc/Notification.h"
#include "arc/ArcRilD.h"
#include "kelarc/Call.h"
#include "kelarc/CallPolicy.h"
#include "kelarc/Callback.h"
#include "kelarc/KelArc.h"
#include "kelarc/LstaTable.h"

#include <cstring>
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

}  // namespace

void KelArc::setNotificationCB(std::function<void(NOTIFY_ID, void*, int)>&& callback)
{
    replaceCallback(m_notificationCb, std::move(callback));

    addTask(kRegisterNotificationCall, {"ARC_RegisterNotification()"}, [this](task::ExecutionReason) {
        runCall(kRegisterNotificationCall, [] { return ARC_RegisterNotification(onArcNotification); });
    });
}

void onArcNotification(int id, void* data, int length)
{
    KelArc* const self = KelArc::s_instance;
    if (self == nullptr)
        return;
    const KelArc::NotificationCallback notify = self->snapshotOf(self->m_notificationCb);
    if (!notify)
        return;  // LSTA notifications are dropped too: published
    if (id == kLstaEvent) {
        self->notifyLsta(data, length);
        return;
    }
    for (const EventRow& row : kEvents)
        if (row.arcId == id)
            notify(row.notifyId, data, length);
}

void KelArc::notifyLsta(const void* data, int)
{
    if (data == nullptr)
        return;  // names no system
    const LstaTech* const row = lstaTechOfIndicator(readField<std::int32_t>(data, offsetof(LstaInfo, indicator)));
    if (row == nullptr)
        return;
    const LstaCallback notify = snapshotOf(lstaCallbackOf(*row));
    if (!notify) {
        log(4, kSource, "notifyLsta", row->missingCallbackLine, "%s", row->missingCallbackText);
        return;
    }
    notify(row->type, readField<std::int32_t>(data, offsetof(LstaInfo, status)),
           readField<double>(data, offsetof(LstaInfo, value)));
}

}  // namespace kelarc
