#include "kelarc/logsink.h"
#include "logsink/Interposed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <future>
#include <optional>
#include <poll.h>
#include <sys/syscall.h>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using kelarc::logsink::LogCallback;
using kelarc::logsink::toDescriptor;
using kelarc::logsink::toStderr;
using ::testing::MatchesRegex;

constexpr const char* kTime = "20[0-9][0-9]-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-5][0-9]\\.[0-9][0-9][0-9]Z ";

/// Sets a variable of the environment, or takes it away, until the end of the test.
class Variable
{
public:
    Variable(const char* name, const char* value) : m_name(name)
    {
        if (const char* const before = std::getenv(name))
            m_before = before;
        set(value);
    }
    ~Variable() { set(m_before ? m_before->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    void set(const char* value) { value == nullptr ? ::unsetenv(m_name) : ::setenv(m_name, value, 1); }

    const char* m_name;
    std::optional<std::string> m_before;
};

/// Two ends: what is written into one comes out of the other.
class Ends
{
public:
    Ends(int out, int in) : m_out(out), m_in(in) {}
    ~Ends()
    {
        ::close(m_out);
        ::close(m_in);
    }
    Ends(const Ends&) = delete;
    Ends& operator=(const Ends&) = delete;

    int in() const { return m_in; }

    /// What comes up to and with the next newline; what there is when nothing more comes for 30 s.
    std::string line() const
    {
        std::string text;
        pollfd waiting{m_out, POLLIN, 0};
        while ((text.empty() || text.back() != '\n') && ::poll(&waiting, 1, 30'000) == 1) {
            char each = 0;
            if (::read(m_out, &each, 1) != 1)
                break;
            text += each;
        }
        return text;
    }
    bool isEmpty() const
    {
        pollfd waiting{m_out, POLLIN, 0};
        return ::poll(&waiting, 1, 0) == 0;
    }

private:
    int m_out;
    int m_in;
};

Ends makePipe()
{
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe(ends), 0);
    return {ends[0], ends[1]};
}

Ends makeTerminal()
{
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_EQ(::grantpt(master), 0);
    EXPECT_EQ(::unlockpt(master), 0);
    char path[128] = {};
    EXPECT_EQ(::ptsname_r(master, path, sizeof path), 0);
    const int terminal = ::open(path, O_RDWR | O_NOCTTY);
    termios settings{};
    EXPECT_EQ(::tcgetattr(terminal, &settings), 0);
    settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);  // newlines as they are written
    EXPECT_EQ(::tcsetattr(terminal, TCSANOW, &settings), 0);
    return {master, terminal};
}

class ADescriptor : public ::testing::Test
{
protected:
    static std::string written(const Ends& ends, int level, const char* line)
    {
        toDescriptor(ends.in())(level, line);
        return ends.line();
    }

    /// Without the time: "warning text\n".
    static std::string withoutTime(const std::string& line)
    {
        return line.substr(std::min<std::size_t>(25, line.size()));
    }

    Variable noColour{"NO_COLOR", nullptr};
    Variable terminal{"TERM", "xterm"};
};

TEST_F(ADescriptor, ReceivesTheTimeTheLevelAndTheLine)
{
    const Ends pipe = makePipe();
    EXPECT_THAT(written(pipe, 4, "KelArc::open.1: text"),
                MatchesRegex(std::string(kTime) + "warning KelArc::open\\.1: text\n"));
}

TEST_F(ADescriptor, ReceivesTheTimeInUtc)
{
    const Variable zone("TZ", "Asia/Tokyo");
    ::tzset();
    const Ends pipe = makePipe();
    const std::time_t before = std::time(nullptr);
    const std::string line = written(pipe, 2, "text");
    const std::time_t after = std::time(nullptr);
    std::tm time{};
    ASSERT_NE(::strptime(line.c_str(), "%Y-%m-%dT%H:%M:%S", &time), nullptr) << line;
    EXPECT_GE(::timegm(&time), before);
    EXPECT_LE(::timegm(&time), after);
}

TEST_F(ADescriptor, ReceivesTheLevelByName)
{
    const Ends pipe = makePipe();
    EXPECT_EQ(withoutTime(written(pipe, 2, "text")), "info text\n");
    EXPECT_EQ(withoutTime(written(pipe, 3, "text")), "busy text\n");
    EXPECT_EQ(withoutTime(written(pipe, 4, "text")), "warning text\n");
    EXPECT_EQ(withoutTime(written(pipe, 5, "text")), "error text\n");
    EXPECT_EQ(withoutTime(written(pipe, 9, "text")), "error text\n");
}

TEST_F(ADescriptor, ReceivesNothingBelowTheLowestLevel)
{
    const Ends pipe = makePipe();
    const LogCallback log = toDescriptor(pipe.in(), 4);
    log(2, "info");
    log(3, "busy");
    EXPECT_TRUE(pipe.isEmpty());
    log(4, "warning");
    EXPECT_EQ(withoutTime(pipe.line()), "warning warning\n");
}

TEST_F(ADescriptor, ReceivesOneLineWhateverControlCharactersALineHas)
{
    const Ends pipe = makePipe();
    EXPECT_EQ(withoutTime(written(pipe, 2, "a\r\nb\tc\033[2J\177 d\xc3\xa4\xc2\x9b\xe4")),
              "info a\\r\\nb\\tc\\x1b[2J\\x7f d\xc3\xa4\\xc2\\x9b\\xe4\n");
}

TEST_F(ADescriptor, ThatIsATerminalReceivesTheLevelInColour)
{
    const Ends tty = makeTerminal();
    EXPECT_EQ(withoutTime(written(tty, 2, "text")), "\033[32minfo\033[0m text\n");
    EXPECT_EQ(withoutTime(written(tty, 3, "text")), "\033[36mbusy\033[0m text\n");
    EXPECT_EQ(withoutTime(written(tty, 4, "text")), "\033[33mwarning\033[0m text\n");
    EXPECT_EQ(withoutTime(written(tty, 5, "text")), "\033[31merror\033[0m text\n");
}

TEST_F(ADescriptor, ReceivesNoColourWhereNoneIsWanted)
{
    const Ends tty = makeTerminal();
    {
        const Variable set("NO_COLOR", "1");
        EXPECT_EQ(withoutTime(written(tty, 4, "text")), "warning text\n");
    }
    {
        const Variable dumb("TERM", "dumb");
        EXPECT_EQ(withoutTime(written(tty, 4, "text")), "warning text\n");
    }
    const Variable empty("NO_COLOR", "");  // as good as not set
    EXPECT_EQ(withoutTime(written(tty, 4, "text")), "\033[33mwarning\033[0m text\n");
}

TEST_F(ADescriptor, ThatIsStandardErrorIsUsedByToStderr)
{
    const Ends pipe = makePipe();
    const int before = ::dup(STDERR_FILENO);
    ::dup2(pipe.in(), STDERR_FILENO);
    toStderr()(3, "text");
    toStderr(4)(3, "left out");
    ::dup2(before, STDERR_FILENO);
    ::close(before);
    EXPECT_EQ(withoutTime(pipe.line()), "busy text\n");
    EXPECT_TRUE(pipe.isEmpty());
}

TEST_F(ADescriptor, ThatCannotBeWrittenToLosesTheLine)
{
    const LogCallback log = toDescriptor(-1);
    errno = 77;
    log(4, "text");
    EXPECT_EQ(errno, 77);
}

TEST_F(ADescriptor, ThatIsFullGivesTheLineToAnother)
{
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    std::vector<std::string> lost;
    const auto keep = [&](int level, const char* line) { lost.push_back(std::to_string(level) + line); };
    const LogCallback log = toDescriptor(full, 3, keep);
    log(2, "left out");
    log(4, "text");
    ::close(full);
    EXPECT_EQ(lost, std::vector<std::string>{"4text"});
    const Ends pipe = makePipe();
    toDescriptor(pipe.in(), 3, keep)(4, "written");
    EXPECT_EQ(lost.size(), 1U);
}

TEST_F(ADescriptor, ThatIsFullHoldsUpNoLineWhileAnotherIsGivenAway)
{
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    std::promise<void> firstIsGiven;
    std::promise<void> secondIsGiven;
    std::future_status seen = std::future_status::timeout;
    const LogCallback log = toDescriptor(full, 3, [&](int, const char* line) {
        if (line == std::string("second")) {
            secondIsGiven.set_value();
            return;
        }
        firstIsGiven.set_value();
        seen = secondIsGiven.get_future().wait_for(std::chrono::seconds(20));
    });
    std::thread first([&] { log(4, "first"); });
    firstIsGiven.get_future().wait();
    log(4, "second");
    first.join();
    ::close(full);
    EXPECT_EQ(seen, std::future_status::ready);
}

TEST_F(ADescriptor, ReceivesALineInOneWrite)
{
    const Ends pipe = makePipe();
    int writes = 0;
    const interposed::Write counted([&](int descriptor, const void* data, std::size_t size) {
        ++writes;
        return interposed::Write::real(descriptor, data, size);
    });
    EXPECT_EQ(withoutTime(written(pipe, 4, "text")), "warning text\n");
    EXPECT_EQ(writes, 1);
}

TEST_F(ADescriptor, ThatTakesOneByteAtATimeReceivesTheWholeLine)
{
    const Ends pipe = makePipe();
    unsigned calls = 0;
    const interposed::Write slow([&](int descriptor, const void* data, std::size_t) -> ssize_t {
        if (++calls % 2 != 0) {
            errno = EINTR;
            return -1;
        }
        return interposed::Write::real(descriptor, data, 1);
    });
    EXPECT_THAT(written(pipe, 4, "KelArc::open.1: text"),
                MatchesRegex(std::string(kTime) + "warning KelArc::open\\.1: text\n"));
    EXPECT_EQ(calls, 2 * std::string("2026-03-01T12:00:00.123Z warning KelArc::open.1: text\n").size());
    EXPECT_TRUE(pipe.isEmpty());
}

TEST_F(ADescriptor, ThatTakesNothingAtFirstIsAskedAgain)
{
    const Ends pipe = makePipe();
    unsigned calls = 0;
    const interposed::Write late([&](int descriptor, const void* data, std::size_t size) -> ssize_t {
        errno = 0;
        return ++calls == 1 ? 0 : interposed::Write::real(descriptor, data, size);
    });
    EXPECT_EQ(withoutTime(written(pipe, 4, "text")), "warning text\n");
    EXPECT_EQ(calls, 2U);
}

TEST_F(ADescriptor, ThatDoesNotTakeAWholeLineHasItGivenToAnother)
{
    const Ends pipe = makePipe();
    std::vector<std::string> elsewhere;
    const LogCallback log = toDescriptor(
        pipe.in(), 3, [&](int level, const char* line) { elsewhere.push_back(std::to_string(level) + ' ' + line); });
    unsigned calls = 0;
    const interposed::Write full([&](int descriptor, const void* data, std::size_t) -> ssize_t {
        if (++calls == 1)
            return interposed::Write::real(descriptor, data, 1);
        errno = ENOSPC;
        return -1;
    });
    errno = 77;
    log(4, "a line\n");
    EXPECT_EQ(errno, 77);
    log(2, "left out");
    EXPECT_THAT(elsewhere, ::testing::ElementsAre("4 a line\n"));
    EXPECT_EQ(calls, 2U);
}

TEST_F(ADescriptor, ReceivesNoLevelBelowTwoUnlessAskedFor)
{
    const Ends pipe = makePipe();
    toDescriptor(pipe.in())(1, "text");
    EXPECT_TRUE(pipe.isEmpty());
    toDescriptor(pipe.in(), 1)(0, "text");
    EXPECT_TRUE(pipe.isEmpty());
    toDescriptor(pipe.in(), 1)(1, "text");
    EXPECT_EQ(withoutTime(pipe.line()), "debug text\n");
    toDescriptor(pipe.in(), -5)(-5, "text");
    EXPECT_EQ(withoutTime(pipe.line()), "debug text\n");
}

TEST_F(ADescriptor, ThatIsATerminalReceivesOtherLevelsAsTheNearestOfTheLibrarys)
{
    const Ends tty = makeTerminal();
    toDescriptor(tty.in(), 0)(1, "text");
    EXPECT_EQ(withoutTime(tty.line()), "debug text\n");
    EXPECT_EQ(withoutTime(written(tty, 6, "text")), "\033[31merror\033[0m text\n");
}

TEST_F(ADescriptor, ThatIsATerminalOfNoNameReceivesColour)
{
    const Ends tty = makeTerminal();
    const Variable none("TERM", nullptr);
    EXPECT_EQ(withoutTime(written(tty, 2, "text")), "\033[32minfo\033[0m text\n");
}

/// Its time, as a line begins with it.
std::string textOf(std::chrono::system_clock::time_point time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    char text[40];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count() % 1000;
    std::snprintf(text + length, sizeof text - length, ".%03dZ", static_cast<int>(ms));
    return text;
}

bool isAsleep(pid_t thread)
{
    std::string stat;
    std::getline(std::ifstream("/proc/self/task/" + std::to_string(thread) + "/stat"), stat);
    return stat.find(") S ") != std::string::npos;
}

TEST_F(ADescriptor, ReceivesLinesOfSeveralThreadsInTheOrderOfTheirTimes)
{
    const Ends pipe = makePipe();
    const LogCallback log = toDescriptor(pipe.in());
    std::promise<void> entered;
    std::promise<void> let;
    std::atomic<int> writes{0};
    const interposed::Write held([&](int descriptor, const void* data, std::size_t size) {
        if (++writes == 1) {
            entered.set_value();
            let.get_future().wait();
        }
        return interposed::Write::real(descriptor, data, size);
    });
    std::thread first([log] { log(2, "first"); });
    entered.get_future().wait();
    std::atomic<pid_t> second{0};
    std::thread other([log, &second] {  // a copy, which shares what orders them
        second = static_cast<pid_t>(::syscall(SYS_gettid));
        log(2, "second");
    });
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while ((second == 0 || !isAsleep(second)) && writes == 1 && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    const auto waiting = std::chrono::system_clock::now();
    while (std::chrono::system_clock::now() < waiting + std::chrono::milliseconds(2))
        std::this_thread::yield();
    const std::string before = textOf(std::chrono::system_clock::now());
    EXPECT_EQ(writes, 1) << "the second line went before the first";
    let.set_value();
    first.join();
    other.join();
    EXPECT_EQ(withoutTime(pipe.line()), "info first\n");
    const std::string line = pipe.line();
    EXPECT_EQ(withoutTime(line), "info second\n");
    EXPECT_GE(line.substr(0, 24), before) << "its time was read before its turn came";
}

TEST_F(ADescriptor, ReceivesWholeLinesFromManyThreads)
{
    const Ends pipe = makePipe();
    const LogCallback log = toDescriptor(pipe.in());
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([log] {
            for (int j = 0; j < 50; ++j)
                log(2, "a line that is to stay whole");
        });
    std::string last;
    for (int i = 0; i < 200; ++i) {
        const std::string line = pipe.line();
        EXPECT_EQ(withoutTime(line), "info a line that is to stay whole\n");
        EXPECT_GE(line.substr(0, 24), last);  // in the order of their times
        last = line.substr(0, 24);
    }
    for (std::thread& each : threads)
        each.join();
}

}  // namespace
