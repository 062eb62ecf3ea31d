// The program that the recorder's tests record: linked to the recorder and to the stand-in behind it. Its argument says
// what it does.

#include "record/standin/StandIn.h"
#include "record/subject/Subject.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <malloc.h>
#include <map>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using standin::functions;

std::atomic<ArcNotificationHandler> g_registered{nullptr};  // as the stand-in got it

void keepHandlers()
{
    functions().registerNotification = [](ArcNotificationHandler handler) {
        g_registered = handler;
        return 0;
    };
}

void ignoreEvent(int, void*, int) {}

int putText(char* buffer, const char* text, int code)
{
    std::strcpy(buffer, text);
    return code;
}

void everyFunction()
{
    keepHandlers();
    functions().getRilVersion = [](char* primary, char* secondary, int) {
        putText(primary, "1.2", 0);
        return putText(secondary, "3.4", 0);
    };
    functions().atcTunneling = [](const char*, char* answer) { return putText(answer, "+CSQ: 21,99", 0); };
    functions().checkModuleSetting = [](const char*, const char* value, char* reply, int, int* writeIndicator) {
        if (value == nullptr)
            return putText(reply, "\"std\"", 0);
        *writeIndicator = 1;
        return 0;
    };
    functions().startGnssRaw = [](char* text, int) { return putText(text, "/dev/pts/3", 0); };
    functions().currentLsta = [](int, LstaInfo* out) {
        *out = LstaInfo{1000, -1, 1, 2, 41.5, {3}};
        return 0;
    };
    std::array<char, 256> first{};
    std::array<char, 256> second{};
    int indicator = 0;
    LstaInfo record{};
    ARC_SetNotificationMethod(1);
    ARC_Open();
    ARC_RegisterNotification(ignoreEvent);
    ARC_GetArcVersion();
    ARC_GetRilVersion(first.data(), second.data(), 256);
    ARC_EnableLogging(3, "...");
    ARC_AtcTunneling("AT+CSQ", first.data());
    ARC_CheckModuleSetting("Power/Cpu", nullptr, first.data(), 255, nullptr);
    ARC_CheckModuleSetting("Power/Cpu", "\"max\"", nullptr, 0, &indicator);
    ARC_StartGNSSraw(first.data(), 255);
    ARC_StopGNSS();
    ARC_ForceStopGNSS();
    ARC_ResetAGNSS();
    ARC_CurrentLSTA(10, &record);
    ARC_EnableLSTA(13, true, -5);
    ARC_EnableLSTA(13, false, 0);
    ARC_Close();
}

void nullPointers()
{
    keepHandlers();
    functions().getArcVersion = []() -> const char* { return nullptr; };
    g_registered = ignoreEvent;
    ARC_RegisterNotification(nullptr);
    REQUIRE(g_registered == nullptr);
    REQUIRE(ARC_GetArcVersion() == nullptr);
    ARC_GetRilVersion(nullptr, nullptr, 256);
    ARC_EnableLogging(0, nullptr);
    ARC_AtcTunneling(nullptr, nullptr);
    ARC_CheckModuleSetting(nullptr, nullptr, nullptr, 255, nullptr);
    ARC_StartGNSSraw(nullptr, 255);
    ARC_CurrentLSTA(10, nullptr);
}

/// Outputs come back as they were whatever the code is; they are written down when the code says that there are any.
void codes()
{
    for (const int code : {0, 1, 24, 33, -5, 1000}) {
        functions().atcTunneling = [code](const char*, char* answer) { return putText(answer, "a", code); };
        functions().startGnssRaw = [code](char* text, int) { return putText(text, "t", code); };
        functions().getRilVersion = [code](char* primary, char* secondary, int) {
            putText(primary, "p", code);
            return putText(secondary, "s", code);
        };
        functions().checkModuleSetting = [code](const char*, const char*, char* reply, int, int* writeIndicator) {
            *writeIndicator = 2;
            return putText(reply, "r", code);
        };
        functions().currentLsta = [code](int, LstaInfo* out) {
            *out = LstaInfo{1, 0, 2, 0, 3, {}};
            return code;
        };
        std::array<char, 8> first{};
        std::array<char, 8> second{};
        int indicator = 0;
        LstaInfo record{};
        REQUIRE(ARC_AtcTunneling("AT", first.data()) == code && first[0] == 'a');
        REQUIRE(ARC_StartGNSSraw(first.data(), 8) == code && first[0] == 't');
        REQUIRE(ARC_GetRilVersion(first.data(), second.data(), 8) == code && first[0] == 'p' && second[0] == 's');
        REQUIRE(ARC_CheckModuleSetting("k", "v", first.data(), 8, &indicator) == code && first[0] == 'r');
        REQUIRE(indicator == 2);
        REQUIRE(ARC_CurrentLSTA(10, &record) == code && record.value == 3);
    }
}

/// Every argument arrives as it was given, and errno goes through in both directions.
void passThrough()
{
    std::array<char, 16> a{};
    std::array<char, 16> b{};
    const char* const text = a.data();
    int number = 0;
    LstaInfo record{};
    functions().setNotificationMethod = [](int method) {
        REQUIRE(errno == 5 && method == -7);
        errno = 6;
        return 70;
    };
    functions().getArcVersion = []() -> const char* {
        REQUIRE(errno == 5);
        errno = 6;
        return "constant";
    };
    functions().getRilVersion = [&](char* primary, char* secondary, int size) {
        REQUIRE(primary == a.data() && secondary == b.data() && size == 16);
        return 71;
    };
    functions().enableLogging = [&](int zone, const char* given) {
        REQUIRE(zone == 9 && given == text);
        return 72;
    };
    functions().atcTunneling = [&](const char* command, char* answer) {
        REQUIRE(command == text && answer == b.data());
        return 73;
    };
    functions().checkModuleSetting = [&](const char* key, const char* value, char* reply, int size, int* indicator) {
        REQUIRE(key == text && value == text + 1 && reply == b.data() && size == 15 && indicator == &number);
        return 74;
    };
    functions().startGnssRaw = [&](char* given, int size) {
        REQUIRE(given == a.data() && size == 14);
        return 75;
    };
    functions().currentLsta = [&](int id, LstaInfo* out) {
        REQUIRE(id == 12 && out == &record);
        return 76;
    };
    functions().enableLsta = [](int id, bool enable, int parameter) {
        REQUIRE(id == 13 && enable && parameter == 44);
        return 77;
    };
    errno = 5;
    REQUIRE(ARC_SetNotificationMethod(-7) == 70);
    REQUIRE(errno == 6);
    errno = 5;
    REQUIRE(std::string(ARC_GetArcVersion()) == "constant");
    REQUIRE(errno == 6);
    REQUIRE(ARC_GetRilVersion(a.data(), b.data(), 16) == 71);
    REQUIRE(ARC_EnableLogging(9, text) == 72);
    REQUIRE(ARC_AtcTunneling(text, b.data()) == 73);
    REQUIRE(ARC_CheckModuleSetting(text, text + 1, b.data(), 15, &number) == 74);
    REQUIRE(ARC_StartGNSSraw(a.data(), 14) == 75);
    REQUIRE(ARC_CurrentLSTA(12, &record) == 76);
    REQUIRE(ARC_EnableLSTA(13, true, 44) == 77);
}

void byteTexts()
{
    std::string all;
    for (int byte = 1; byte < 256; ++byte)
        all += static_cast<char>(byte);
    ARC_EnableLogging(0, all.c_str());
    functions().startGnssRaw = [](char* text, int) { return putText(text, "\xff\x80\x7f\x1f\"\\/", 0); };
    std::array<char, 16> text{};
    ARC_StartGNSSraw(text.data(), 16);
}

/// Buffers of exactly the size that is given, so that reading on is an error that a sanitizer sees.
void unterminated()
{
    const auto fill = [](char* text, int size) {
        std::memset(text, 'x', static_cast<std::size_t>(size));
        return 0;
    };
    functions().startGnssRaw = fill;
    functions().getRilVersion = [&](char* primary, char* secondary, int size) {
        return fill(primary, size) + fill(secondary, size);
    };
    functions().checkModuleSetting = [&](const char*, const char*, char* reply, int size, int*) {
        return fill(reply, size);
    };
    std::vector<char> first(5);
    std::vector<char> second(5);
    ARC_StartGNSSraw(first.data(), 5);
    ARC_GetRilVersion(first.data(), second.data(), 5);
    ARC_CheckModuleSetting("k", nullptr, first.data(), 5, nullptr);
    functions().startGnssRaw = [](char*, int) { return 0; };
    ARC_StartGNSSraw(first.data(), 0);
    ARC_StartGNSSraw(first.data(), -1);
    // The answer to an AT command without a terminator: looked at up to a bound.
    functions().atcTunneling = [](const char*, char* answer) {
        std::memset(answer, 'y', 5000);
        return 0;
    };
    std::vector<char> answer(5000);
    ARC_AtcTunneling("AT", answer.data());
}

void longTexts()
{
    ARC_EnableLogging(0, std::string(100000, 'l').c_str());
    keepHandlers();
    ARC_RegisterNotification(ignoreEvent);
    std::vector<unsigned char> payload(50000, 0xab);
    g_registered.load()(1, payload.data(), static_cast<int>(payload.size()));
}

void values()
{
    double value = 0;
    functions().currentLsta = [&](int, LstaInfo* out) {
        *out = LstaInfo{1000, 0, 1, 0, value, {}};
        return 0;
    };
    using Limits = std::numeric_limits<double>;
    std::setlocale(LC_ALL, "de_DE.UTF-8");  // a decimal comma, where the machine has that language
    for (const double each :
         {0.0, -0.5, 0.1, 0.1 + 0.2, 1e300, 5e-324, 41.0, Limits::infinity(), Limits::quiet_NaN()}) {
        value = each;
        LstaInfo out{};
        ARC_CurrentLSTA(10, &out);
    }
}

std::vector<int> g_handled;

void errnoHandler(int id, void*, int)
{
    REQUIRE(errno == 5);
    errno = 6;
    g_handled.push_back(id);
}

void callingHandler(int id, void* data, int length)
{
    REQUIRE(length == 3 && static_cast<unsigned char*>(data)[2] == 0xfe);
    g_handled.push_back(id);
    ARC_StopGNSS();
}

void events()
{
    keepHandlers();
    std::array<unsigned char, 3> payload{0, 1, 0xfe};
    ARC_RegisterNotification(errnoHandler);
    const ArcNotificationHandler first = g_registered;
    REQUIRE(first != nullptr && first != errnoHandler);
    errno = 5;
    first(34, payload.data(), 3);
    REQUIRE(errno == 6);
    errno = 5;
    first(0, nullptr, 8);
    errno = 5;
    first(-2, payload.data(), 0);
    errno = 5;
    first(3, payload.data(), -1);
    // Another handler while the first is still known to the library, which then refuses the other.
    functions().registerNotification = [](ArcNotificationHandler handler) {
        g_registered = handler;
        return 31;
    };
    REQUIRE(ARC_RegisterNotification(callingHandler) == 31);
    REQUIRE(g_registered != first && g_registered != callingHandler);
    errno = 5;
    first(4, payload.data(), 3);
    std::thread([&] { g_registered.load()(5, payload.data(), 3); }).join();
    // From within a call, on the thread that makes it.
    functions().open = [&] {
        g_registered.load()(6, payload.data(), 3);
        return 0;
    };
    ARC_Open();
    ARC_RegisterNotification(errnoHandler);
    REQUIRE(g_registered == first);
    REQUIRE((g_handled == std::vector<int>{34, 0, -2, 3, 4, 5, 6}));
}

template <int Number>
void numbered(int id, void*, int)
{
    g_handled.push_back(1000 * Number + id);
}

template <int... Numbers>
void registerAll(std::integer_sequence<int, Numbers...>)
{
    std::vector<ArcNotificationHandler> seen;
    for (const ArcNotificationHandler handler : {numbered<Numbers>...}) {
        ARC_RegisterNotification(handler);
        seen.push_back(g_registered);
    }
    int id = 1;
    for (const ArcNotificationHandler handler : seen)
        handler(id++, nullptr, 0);
}

void manyHandlers()
{
    keepHandlers();
    registerAll(std::make_integer_sequence<int, 18>());
    for (int i = 0; i < 18; ++i)
        REQUIRE(g_handled[static_cast<std::size_t>(i)] == 1000 * i + i + 1);
}

void threads()
{
    keepHandlers();
    ARC_RegisterNotification(ignoreEvent);
    std::vector<std::thread> all;
    for (int number = 0; number < 6; ++number)
        all.emplace_back([number] {
            std::array<char, 64> text{};
            for (int i = 0; i < 1000; ++i) {
                ARC_EnableLogging(number * 10000 + i, "some text that makes the line a little longer");
                ARC_StartGNSSraw(text.data(), 64);
                if (i % 10 == 0)
                    g_registered.load()(number * 10000 + i, text.data(), 64);
            }
        });
    for (std::thread& each : all)
        each.join();
}

void callForEver()
{
    for (;;)
        ARC_StopGNSS();
}

void hang()
{
    functions().stopGnss = [] {
        for (;;)
            pause();
        return 0;
    };
    ARC_Open();
    ARC_StopGNSS();
}

int statusOf(pid_t child)
{
    int status = 0;
    REQUIRE(waitpid(child, &status, 0) == child);
    return status;
}

void forked()
{
    ARC_Open();
    pid_t child = -1;
    functions().stopGnss = [&] {
        child = fork();
        return 0;
    };
    ARC_StopGNSS();
    if (child == 0) {
        ARC_ForceStopGNSS();
        const pid_t grandchild = fork();
        if (grandchild == 0) {
            ARC_ResetAGNSS();
            _exit(0);
        }
        REQUIRE(statusOf(grandchild) == 0);
        std::printf("%ld %ld\n", static_cast<long>(getpid()), static_cast<long>(grandchild));
        std::fflush(stdout);
        _exit(0);
    }
    REQUIRE(statusOf(child) == 0);
    ARC_Close();
}

/// Forks again and again while other threads are within the recorder.
void forkedBetweenCalls()
{
    ARC_Close();  // so that the file is the parent's
    std::atomic<bool> over{false};
    std::vector<std::thread> others;
    for (int i = 0; i < 2; ++i)
        others.emplace_back([&] {
            for (int call = 0; call < 100000 && !over; ++call)
                ARC_ForceStopGNSS();
        });
    for (int i = 0; i < 20; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            ARC_Open();
            _exit(0);
        }
        REQUIRE(statusOf(child) == 0);
    }
    over = true;
    for (std::thread& other : others)
        other.join();
}

/// A process of its own that inherits the environment, and with it the name of the recording.
void started(const char* self)
{
    ARC_Open();
    const pid_t child = fork();
    if (child == 0) {
        execl(self, self, "codes", nullptr);
        _exit(98);
    }
    REQUIRE(statusOf(child) == 0);
    std::printf("%ld\n", static_cast<long>(child));
    ARC_Close();
}

void memory()
{
    keepHandlers();
    functions().currentLsta = [](int, LstaInfo* out) {
        *out = LstaInfo{1000, 0, 1, 0, 1e300 / 7, {}};
        return 0;
    };
    functions().startGnssRaw = [](char* text, int) { return putText(text, "some text", 0); };
    ARC_RegisterNotification(ignoreEvent);
    std::array<char, 64> text{};
    const std::string longText(20000, 'l');
    LstaInfo record{};
    const auto call = [&] {
        ARC_StartGNSSraw(text.data(), 64);
        ARC_CurrentLSTA(10, &record);
        ARC_EnableLogging(0, longText.c_str());
        g_registered.load()(34, &record, sizeof record);
    };
    call();
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 2500; ++i)
        call();
    REQUIRE(mallinfo2().uordblks == before);
}

void call()
{
    REQUIRE(ARC_Open() == 0);
    REQUIRE(ARC_Close() == 0);
}

/// In a destructor, when everything static of other files may be gone.
void atTheEnd()
{
    struct Last
    {
        ~Last() { ARC_Close(); }
    };
    static const Last last;
    ARC_Open();
}

}  // namespace

int main(int argc, char** argv)
{
    const std::map<std::string, void (*)()> actions{
        {"every-function", everyFunction},
        {"null-pointers", nullPointers},
        {"codes", codes},
        {"pass-through", passThrough},
        {"byte-texts", byteTexts},
        {"unterminated", unterminated},
        {"long-texts", longTexts},
        {"values", values},
        {"events", events},
        {"many-handlers", manyHandlers},
        {"threads", threads},
        {"call-for-ever", callForEver},
        {"hang", hang},
        {"forked", forked},
        {"forked-between-calls", forkedBetweenCalls},
        {"memory", memory},
        {"call", call},
        {"at-the-end", atTheEnd},
    };
    REQUIRE(argc == 2);
    if (std::string(argv[1]) == "started")
        started(argv[0]);
    else
        actions.at(argv[1])();
    return 0;
}
