#pragma once

#include "../task/ExecutionReason.h"
#include "../task/TaskContainer.h"
#include "../task/TaskQueue.h"
#include "Types.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace kelarc {

class Attempt;
struct CallPolicy;
struct CallResult;
struct LstaTech;
struct Setting;
struct SettingReply;
struct SettingWritten;

/// Asynchronous control of the GNSS receiver in a modem, through the RIL client library libArcRilD.
///
/// The common contract; each operation states only what differs:
///
/// - A request checks its arguments, queues one task and returns. The task runs later on the object's one worker
///   thread, calls one ARC_* function, and answers the callback there, once. Tasks run one at a time, in the order in
///   which they were requested (if two requests read the same time off the steady clock, the later one runs first).
///   Operations may be called from any thread, also from callbacks.
/// - The first argument of a callback is the result code: 0 is success, 1 to 39 are the client library's (the log shows
///   their texts), other values are unknown. 32 is also answered when no attempt was made, 14 when an argument was
///   refused. The other arguments are the modem's values, passed on as described; references are valid during the call
///   only.
/// - A failed attempt is repeated after 250 ms. Unless stated otherwise there are at most 15 attempts; codes 15 and 26
///   do not count, so a request is repeated for as long as the modem answers them. Every attempt is logged.
/// - "Needs open": the task makes no attempt, and stops repeating, while the object is inactive: before open() has
///   succeeded, after close(), and from stopGNSS() until its task runs. It then answers 32, or the last code if there
///   was an attempt.
/// - A callback is never called when 128 requests wait already (the request is silently dropped), when the object is
///   destroyed before the task ran, or while an earlier request is repeated for ever. Effects before queuing remain
///   when the request is dropped: the object was made inactive, a callback was replaced.
/// - The library does not check for empty callbacks: calling one throws std::bad_function_call. An exception that
///   leaves a callback ends the process on the worker thread; on the client library's notification thread it runs into
///   the client library.
/// - When memory runs out, an operation throws std::bad_alloc and has no effect, but the callback that was passed may
///   be gone. Events and destruction need no memory. The worker thread needs memory only to answer a text of 16
///   characters or more (getArcVersion(), getModuleSetting(), getGnssRawVersion(), startRawGNSS()); without it the
///   process ends.
///
/// The worker thread blocks all signals but those that its own instructions cause. Threads and programs that a callback
/// starts inherit this, unless they change it. Its stack has the default size of new threads when the object is
/// constructed (pthread_setattr_default_np()); 64 KiB are enough for the library itself. A child of fork() has no
/// worker: it may only execute another program or end by _exit().
///
/// One object per process: the client library knows one receiver of notifications, the object constructed last. Its
/// address outlives the object, so no event may arrive during or after destruction.
/// Destroying an object from one of its own callbacks ends the process: the worker would wait for itself.
class __attribute__((visibility("default"))) KelArc
{
public:
    /// Starts the worker thread; the modem is not touched.
    /// `logCb` receives every diagnostic line: a level (2 success and notices, 3 codes 15 and 26, 4 failures and
    /// refusals, 5 a stop that failed) and the text, at most 510 characters, valid during the call only. The library
    /// appends no newline, but texts of callers and of the modem stand in the line unchanged, newlines and other
    /// control characters included: show it with kelarc::logsink::printable(), as the callbacks of kelarc/logsink.h do.
    /// `logCb` is called from the worker thread, from threads that call operations, and from the client library's
    /// notification thread, also at the same time. Throws std::system_error when no thread can be started, and
    /// std::bad_alloc; `logCb` is then not moved from, and events still go to the object that received them before.
    explicit KelArc(std::function<void(int, char const*)>&& logCb);

    KelArc(const KelArc&) = delete;
    KelArc& operator=(const KelArc&) = delete;

    /// Calls close(), then ends the worker. Waits for the running task, for ever if that task is repeated for ever.
    /// Waiting tasks are destroyed uncalled, so an open connection is closed only if the worker had taken the close
    /// task by then: close and wait for the answer before destroying the object.
    virtual ~KelArc();

    /// Opens the connection: sets the notification method (a failure of that is only logged), then opens, repeated
    /// without limit and blocking every other request until it succeeds.
    /// Answers 0; or 32 when the connection was open already by the time the task ran.
    /// Does nothing and never answers while the object is open or active. Note: stopGNSS() on a closed object leaves it
    /// active once its task has run, and open() then refuses; close() makes it possible again.
    /// `cb` is copied.
    void open(std::function<void(int)>&& cb);

    /// Makes the object inactive at once, which ends requests that are being repeated, and closes the connection.
    /// Answers the last code of ARC_Close; the object counts as closed whatever the code. Answers 32 when the
    /// connection was closed already by the time the task ran. Never answers when the object is not open at the time of
    /// the call: it then only becomes inactive, and an open() that still waits or runs is not undone. When the queue is
    /// full the object stays open and inactive until a later close() or stopGNSS() is accepted. `cb` is copied.
    void close(std::function<void(int)>&& cb = [](int) {});

    /// True from the successful open task to the end of the close task.
    bool isOpen() const { return m_isOpen.load(std::memory_order_relaxed); }

    /// @name Information and pass-through
    /// @{

    /// Answers the client library's version; "<UNKNOWN>" with code 32 when it gave none.
    void getArcVersion(std::function<void(int, std::string&&)>&& cb);

    /// Answers the RIL's two version texts. After a failure they hold what the attempts wrote, zeros otherwise.
    void getRilVersion(std::function<void(int, RilVersion&&)>&& cb);

    /// Switches the client library's own logging; zone and text are passed on as they are.
    void enableLogging(LOGGING_ZONE zone, const std::string& text, std::function<void(int)>&& cb);

    /// Sends an AT command. The modem's answer is not fetched: the text is "<UNKNOWN>" in every case. Needs open.
    void ATcmd(const std::string& command, std::function<void(int, std::string&&)>&& cb);

    /// @}
    /// @name Settings of the modem, by key
    /// The modem keeps its settings as texts in double quotes, addressed by keys such as "Power/Cpu". All these
    /// operations need open and copy their callback. A setter answers true exactly when the modem reported 1 as its
    /// write indicator (the simulated modem does so when the value was changed).
    /// @{

    /// Reads any key. Answers the text as the modem gave it, quote marks included, at most 255 characters; after a
    /// failure the text that the attempts wrote, normally none.
    void getModuleSetting(const std::string& key, std::function<void(int, std::string&&)>&& callback);

    /// Writes any text to any key. The value is sent unchanged: the caller adds the quote marks.
    void setModuleSetting(const std::string& key, const std::string& value, std::function<void(int, bool)>&& callback);

    /// @}
    /// @name Typed settings
    /// Getters answer 0 (unknown) beside the code when the read failed, and 0 with code 0, after a log line, when the
    /// reply was not recognised. Setters given a value that is not listed log it and answer (14, false) before
    /// returning, on the caller's thread. All need open and copy their callback.
    /// @{

    void getCpuPower(std::function<void(int, CPU_POWER)>&& callback);
    /// Accepts STANDARD and MAXIMUM.
    void setCpuPower(CPU_POWER power, std::function<void(int, bool)>&& callback);

    /// CPU power saving. A failed read is also logged as an unknown reply.
    void getCpuPsm(std::function<void(int, RESULT)>&& callback);
    void setCpuPsm(bool on, std::function<void(int, bool)>&& callback);

    void getGnssFormat(std::function<void(int, gnss::FORMAT)>&& callback);
    /// Accepts NMEA and RAW.
    void setGnssFormat(gnss::FORMAT format, std::function<void(int, bool)>&& callback);

    /// Synchronisation of the output with dead reckoning.
    void getDRSync(std::function<void(int, RESULT)>&& callback);
    void setDRSync(bool on, std::function<void(int, bool)>&& callback);

    /// Whether a satellite system is used. The answer also names the system.
    /// A value other than the four systems is logged, and never answered.
    void getGnssStatus(gnss::SYSTEM system, std::function<void(int, gnss::SYSTEM, RESULT)>&& callback);
    /// A value other than the four systems does nothing: no log line, no answer.
    void setGnssStatus(gnss::SYSTEM system, bool on, std::function<void(int, gnss::SYSTEM, bool)>&& callback);

    void getSbasStatus(std::function<void(int, RESULT)>&& callback);
    void setSbasStatus(bool on, std::function<void(int, bool)>&& callback);

    /// Period of the NMEA output.
    void getGnssFrequency(std::function<void(int, gnss::FREQUENCY)>&& callback);
    /// Accepts the four periods.
    void setGnssFrequency(gnss::FREQUENCY frequency, std::function<void(int, bool)>&& callback);

    /// Lowest elevation of satellites used (unit: the modem's). Answers the low 8 bits of the number in the reply (a
    /// number that does not fit a `long` becomes the nearest `long`), 0 without a number; nothing is logged.
    void getMinElevation(std::function<void(int, unsigned char)>&& callback);
    /// Accepts 5 to 45 (unit: the modem's).
    void setMinElevation(unsigned char elevation, std::function<void(int, bool)>&& callback);

    /// Mask of the raw data (bits: the modem's). Converted as in getMinElevation().
    void getRawMask(std::function<void(int, unsigned char)>&& callback);
    /// Accepts 0 to 255.
    void setRawMask(unsigned char mask, std::function<void(int, bool)>&& callback);

    /// Answers the text as the modem gave it, quote marks included.
    void getGnssRawVersion(std::function<void(int, std::string&&)>&& callback);

    /// @}
    /// @name GNSS engine
    /// @{

    /// Starts the receiver's raw output; repeated without limit while the object is active. Answers the text that the
    /// modem gave (at most 254 characters; the simulated modem gives the path of the terminal that carries the
    /// sentences). Just before the answer the notification callback, if set, receives RAW_GNSS_START_ENDED with a null
    /// pointer and 0, on the worker thread; both also come when no attempt was made. Needs open.
    void startRawGNSS(std::function<void(int, std::string&&)>&& callback);

    /// Stops the engine. Makes the object inactive at once: requests that are being repeated end, and requests that
    /// need open and wait before this one give up. The object is active again when the task of the stop runs. That task
    /// also ends, answering its last code, when a newer stopGNSS() or a close() comes between its attempts. When the
    /// queue is full the object stays inactive until a later stopGNSS() is accepted.
    void stopGNSS(std::function<void(int)>&& callback);

    /// Stops the engine by force. The request is repeated until the modem succeeds and blocks every other request;
    /// nothing ends it earlier. Answers only 0.
    void forceStopGNSS(std::function<void(int)>&& callback);

    /// Resets the assistance data.
    void resetAGNSS(std::function<void(int)>&& callback);

    /// @}
    /// @name LSTA, a status that the modem keeps per satellite system
    /// @{

    /// Answers the status (non-zero is true) and the value, truncated toward zero to int (a value beyond int becomes
    /// the nearest int, not-a-number 0); (code, false, 0) after 15 failures; (0, false, 0) after a log line when the
    /// modem described another system than the requested one. Needs open, but never answers while the object is
    /// inactive, not even a query that has just succeeded. An unknown `tech` is logged and answered (14, false, 0)
    /// before returning, on the caller's thread.
    void getLstaGnss(lsta::TECH tech, std::function<void(int, bool, int)>&& callback);

    /// Switches LSTA notifications of one system on or off; `parameter` is passed to the modem unchanged.
    /// `lstaCallback` replaces the system's callback at once, also when `enable` is false and when the request fails
    /// later. It receives (the system, status, value) for every notification, on the client library's notification
    /// thread, but only while a notification callback is set (see setNotificationCB()). Where it is empty, each of the
    /// system's notifications is logged instead. `resultCallback` is answered on failure only, after 15 failures; not
    /// on success, nor when the request ended because the object was inactive. Needs open. An unknown `tech` is logged
    /// and answered 14 before returning, on the caller's thread; no callback is replaced.
    void setLstaGnssStatus(lsta::TECH tech, bool enable, int parameter,
                           std::function<void(lsta::TYPE, int, double)>&& lstaCallback,
                           std::function<void(int)>&& resultCallback);

    /// @}
    /// @name Notifications
    /// @{

    /// Replaces the notification callback at once and registers with the client library, repeated without limit and
    /// blocking every other request until it succeeds. Only the log tells the outcome.
    /// `callback` receives the modem's events 22 and 72 to 75 on the client library's notification thread, with their
    /// data (valid during the call only) and length as delivered, and RAW_GNSS_START_ENDED on the worker thread. It may
    /// be replaced at any time, also from inside itself; a call that has begun goes on with the old one.
    /// While it is empty every event is dropped, LSTA notifications included.
    void setNotificationCB(std::function<void(NOTIFY_ID, void*, int)>&& callback);

    /// The stored notification callback, to be tested or called. It holds the callback given to setNotificationCB() in
    /// a shared wrapper, so its target() is not the caller's, and copies of it share one callback. The reference is
    /// valid as long as the object; do not use the callback while another thread replaces it. A callback that is
    /// assigned to the reference is called too, but copied for every event: without memory for the copy the event is
    /// lost.
    std::function<void(NOTIFY_ID, void*, int)>& getNotificationCB() { return m_notificationCb; }

    /// @}
    /// @name State of the queue
    /// Answered at once, on the caller's thread. A failure to lock is thrown as std::system_error.
    ///
    /// A request runs until its callback has returned, so just after its answer it may still be the running one. To see
    /// whether all requests have ended, call getPendingTasks() first, then getRunningTaskId(). In the other order the
    /// worker may take a request in between, and neither shows it. isIdle() and waitUntilIdle() in kelarc/idle.h do so.
    /// @{

    /// Id of the running request, 0 when none runs. May not be 0 yet just after an answer: see above.
    std::uint32_t getRunningTaskId() const;
    /// Name of the running request; "No running task" when none runs. The request may end between two calls. Here and
    /// in tasksToString() the caller's texts stand unchanged, newlines and other control characters included.
    std::string getRunningTaskName() const;
    /// Number of waiting requests, 0 to 128; the running one is not counted, so 0 does not mean that all have ended.
    std::uint32_t getPendingTasks() const;
    /// Milliseconds until the first waiting request is due: negative when it is overdue, 0 when none waits.
    std::int64_t getDelayedExecutionTime() const;
    /// One line for each waiting request, after a line with their number. Locks the queue meanwhile: not for polling.
    std::string tasksToString() const;

    /// @}

private:
    // Hidden: applications cannot link private functions, so these can change without a new soname.
    using NotificationCallback = std::function<void(NOTIFY_ID, void*, int)>;
    using LstaCallback = std::function<void(lsta::TYPE, int, double)>;

    friend void onArcNotification(int id, void* data, int length);

    [[gnu::visibility("hidden"), gnu::format(printf, 6, 7)]] void
    log(int level, const char* sourceFile, const char* function, std::size_t line, const char* format, ...);

    [[gnu::visibility("hidden")]] void addTask(const CallPolicy& policy,
                                               std::initializer_list<std::string_view> callText,
                                               std::function<void(task::ExecutionReason)>&& body);
    [[gnu::visibility("hidden")]] void addTask(std::string&& name, std::function<void(task::ExecutionReason)>&& body);
    [[gnu::visibility("hidden")]] const char* ownCallText() const;
    [[gnu::visibility("hidden")]] CallResult runCall(const CallPolicy& policy, Attempt attempt);
    [[gnu::visibility("hidden")]] CallResult runCallNamed(const char* callText, const CallPolicy& policy,
                                                          Attempt attempt);
    [[gnu::visibility("hidden")]] static bool logArcResult(KelArc* self, const char* callText, int code,
                                                           unsigned elapsedMs, int& retriesLeft);

    bool isActive() const { return m_active.load(std::memory_order_relaxed); }
    void setActive(bool active) { m_active.store(active, std::memory_order_relaxed); }
    void setOpen(bool open) { m_isOpen.store(open, std::memory_order_relaxed); }

    [[gnu::visibility("hidden")]] void addRead(std::string_view key, std::function<void(task::ExecutionReason)>&& body);
    [[gnu::visibility("hidden")]] void addWrite(std::string_view key, std::string_view value,
                                                std::function<void(task::ExecutionReason)>&& body);
    [[gnu::visibility("hidden")]] SettingReply readSetting(const char* key);
    [[gnu::visibility("hidden")]] SettingWritten writeSetting(const char* key, const char* value);
    [[gnu::visibility("hidden")]] void setTypedSetting(const char* key, const std::string& value,
                                                       const std::function<void(int, bool)>& callback);
    template <typename Value>
    [[gnu::visibility("hidden")]] void getTypedSetting(const Setting& setting,
                                                       const std::function<void(int, Value)>& callback);
    [[gnu::visibility("hidden")]] void getNumber(const char* key,
                                                 const std::function<void(int, unsigned char)>& callback);
    [[gnu::visibility("hidden")]] unsigned char knownValue(const Setting& setting, const char* reply);

    [[gnu::visibility("hidden")]] void notifyLsta(const void* data, int length);
    [[gnu::visibility("hidden")]] std::shared_ptr<LstaCallback>& lstaCallbackOf(const LstaTech& tech);
    [[gnu::visibility("hidden")]] std::shared_ptr<NotificationCallback> holdNotificationCallback() const;

    /// Receiver of notifications: the object constructed last; never reset.
    [[gnu::visibility("hidden")]] static std::atomic<KelArc*> s_instance;

    std::atomic<bool> m_isOpen{false};  ///< written by the open and close tasks, read anywhere
    std::atomic<bool> m_active{false};  ///< tasks may go on; set by tasks, cleared by callers of close() and stopGNSS()

    std::function<void(int, char const*)> m_logCb;  ///< constant after construction

    /// Guards the replacement of the five callbacks below; never held while one runs.
    mutable std::mutex m_callbackMutex;
    NotificationCallback m_notificationCb;      ///< calls a shared callback, unless somebody has assigned to it
    std::shared_ptr<LstaCallback> m_lstaGpsCb;  ///< null while empty, like the three below
    std::shared_ptr<LstaCallback> m_lstaGlonassCb;
    std::shared_ptr<LstaCallback> m_lstaGalileoCb;
    std::shared_ptr<LstaCallback> m_lstaBeidouCb;

    /// Last, after everything that tasks use: it is destroyed first, which ends the worker.
    task::TaskQueue<128, task::TaskContainer> m_taskQueue{"Task Queue"};
};

}  // namespace kelarc
