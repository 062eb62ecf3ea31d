#include "kelarc/KelArc.h"
#include "kelarc/logsink.h"
#include "logsink/Interposed.h"
#include "logsink/JournalDaemon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <future>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using kelarc::logsink::LogCallback;
using kelarc::logsink::toJournal;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Gt;
using ::testing::IsEmpty;
using ::testing::Key;
using ::testing::Not;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

std::ptrdiff_t openDescriptors()
{
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return std::distance(begin(descriptors), end(descriptors));
}

class TheJournal : public ::testing::Test
{
protected:
    ~TheJournal() override { interposed::forget(); }

    LogCallback sink(int lowestLevel = 2) { return toJournal("navigator", lowestLevel, otherwise, daemon.path()); }

    std::map<std::string, std::string> fields()
    {
        const auto entry = daemon.next();
        return entry ? entry->fields : std::map<std::string, std::string>();
    }

    JournalDaemon daemon;
    std::vector<std::string> elsewhere;
    LogCallback otherwise = [this](int level, const char* line) {
        elsewhere.push_back(std::to_string(level) + ' ' + line);
    };
};

TEST(JournalSocket, IsWhereTheSystemsJournalListens)
{
    EXPECT_STREQ(kelarc::logsink::kJournalSocket, "/run/systemd/journal/socket");
}

TEST_F(TheJournal, ReceivesALineWithItsFields)
{
    sink()(4, "KelArc::getLstaGnss.1021: Unknown/unsupported tech id 5");
    EXPECT_THAT(fields(), UnorderedElementsAre(
                              Pair("MESSAGE", "KelArc::getLstaGnss.1021: Unknown/unsupported tech id 5"),
                              Pair("PRIORITY", "4"), Pair("SYSLOG_IDENTIFIER", "navigator"), Pair("KELARC_LEVEL", "4"),
                              Pair("CODE_FUNC", "getLstaGnss"), Pair("CODE_LINE", "1021")));
    EXPECT_THAT(elsewhere, IsEmpty());
}

TEST_F(TheJournal, ReceivesTheBytesOfItsProtocol)
{
    sink()(2, "text");
    EXPECT_EQ(daemon.datagram(), "MESSAGE=text\nPRIORITY=6\nSYSLOG_IDENTIFIER=navigator\nKELARC_LEVEL=2\n");
}

TEST_F(TheJournal, ReceivesNoFieldThatALineMadeUp)
{
    sink()(3, "AT\nPRIORITY=0\033[2J\xc2\x9b\xff");
    EXPECT_EQ(daemon.datagram(), "MESSAGE=AT\\nPRIORITY=0\\x1b[2J\\xc2\\x9b\\xff\nPRIORITY=5\n"
                                 "SYSLOG_IDENTIFIER=navigator\nKELARC_LEVEL=3\n");
    sink()(3, "K::f\n\x9b.7: text");
    EXPECT_EQ(daemon.datagram(), "MESSAGE=K::f\\n\\x9b.7: text\nPRIORITY=5\nSYSLOG_IDENTIFIER=navigator\n"
                                 "KELARC_LEVEL=3\nCODE_FUNC=f\\n\\x9b\nCODE_LINE=7\n");
    toJournal("nav\nPRIORITY=0", 2, otherwise, daemon.path())(3, "text");
    EXPECT_EQ(daemon.datagram(), "MESSAGE=text\nPRIORITY=5\nSYSLOG_IDENTIFIER=nav\\nPRIORITY=0\nKELARC_LEVEL=3\n");
    sink()(3, "=");
    EXPECT_THAT(fields(), Contains(Pair("MESSAGE", "=")));
}

TEST_F(TheJournal, ReceivesALevelAsAPriority)
{
    for (const int level : {1, 2, 3, 4, 5, 6})
        sink(0)(level, "text");
    std::vector<std::string> priorities;
    for (int i = 0; i < 6; ++i)
        priorities.push_back(fields()["PRIORITY"]);
    EXPECT_THAT(priorities, ElementsAre("7", "6", "5", "4", "3", "3"));
}

TEST_F(TheJournal, ReceivesTheFunctionAndLineOnlyOfALineThatNamesThem)
{
    sink()(4, "KelArc::operator().395: Could not call successfully 'x' after 15 retries");
    auto named = fields();
    EXPECT_EQ(named["CODE_FUNC"], "operator()");
    EXPECT_EQ(named["CODE_LINE"], "395");
    sink()(4, "a::b.7: text");
    named = fields();
    EXPECT_EQ(named["CODE_FUNC"], "b");
    EXPECT_EQ(named["CODE_LINE"], "7");
    for (const char* const line :
         {"", "a line of the program's", "a: b::c.5", "KelArc::open: text", "KelArc::.5: text", "KelArc::open.: text",
          "KelArc::5: text", "KelArc::open.5a: text", "KelArc::open.a5: text", "KelArc::open.5"}) {
        sink()(4, line);
        EXPECT_THAT(fields(), Not(Contains(Key("CODE_FUNC")))) << line;
    }
}

TEST_F(TheJournal, ReceivesALineTooLongForADatagramAsASealedFile)
{
    const std::string line(2'000'000, 'x');
    sink()(4, line.c_str());
    const auto entry = daemon.next();
    ASSERT_TRUE(entry);
    EXPECT_TRUE(entry->wasFile);
    EXPECT_EQ(entry->seals, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL);
    EXPECT_TRUE(entry->fields.at("MESSAGE") == line);
    EXPECT_EQ(entry->fields.at("KELARC_LEVEL"), "4");
    EXPECT_THAT(elsewhere, IsEmpty());
}

TEST_F(TheJournal, ReceivesNothingBelowTheLowestLevel)
{
    sink(4)(3, "busy");
    EXPECT_FALSE(daemon.datagram());
    sink(4)(4, "warning");
    EXPECT_TRUE(daemon.datagram());
    EXPECT_THAT(elsewhere, IsEmpty());
}

TEST_F(TheJournal, ThatIsNotThereIsReplaced)
{
    const LogCallback log = sink();
    daemon.stop();
    log(4, "first");
    EXPECT_THAT(elsewhere, ElementsAre("4 first"));
    daemon.restart();
    log(4, "second");
    EXPECT_THAT(fields(), Contains(Pair("MESSAGE", "second")));
    EXPECT_THAT(elsewhere, ElementsAre("4 first"));
    toJournal("navigator", 2, {}, daemon.path() + "none")(4, "third");  // nowhere to go
}

TEST_F(TheJournal, MayListenAtTheLongestPathOfASocket)
{
    JournalDaemon far(107);
    ASSERT_EQ(far.path().size(), 107U);
    toJournal("navigator", 2, otherwise, far.path())(2, "text");
    EXPECT_TRUE(far.datagram());
    EXPECT_THAT(elsewhere, IsEmpty());
}

TEST_F(TheJournal, IsNotAtAPathOneLongerWhateverListensAtItsBeginning)
{
    JournalDaemon far(108);  // the system takes the path without its end
    toJournal("navigator", 2, otherwise, far.path())(2, "text");
    EXPECT_FALSE(far.datagram());
    EXPECT_THAT(elsewhere, ElementsAre("2 text"));
}

TEST_F(TheJournal, ReceivesALevelBelowTwoWhenAskedFor)
{
    toJournal("navigator", kelarc::logsink::kInfo, otherwise, daemon.path())(1, "left out");
    EXPECT_FALSE(daemon.datagram());
    sink(1)(1, "text");
    EXPECT_EQ(daemon.datagram(), "MESSAGE=text\nPRIORITY=7\nSYSLOG_IDENTIFIER=navigator\nKELARC_LEVEL=1\n");
}

TEST_F(TheJournal, IsAskedAgainWhenASignalInterrupts)
{
    interposed::fail(interposed::Call::sendmsg, EINTR, 3);
    sink()(4, "text");
    EXPECT_EQ(interposed::count(interposed::Call::sendmsg), 4U);
    EXPECT_THAT(fields(), Contains(Pair("MESSAGE", "text")));
    EXPECT_THAT(elsewhere, IsEmpty());
}

TEST_F(TheJournal, ReceivesAFileWhereTheSystemHasNoRoomForADatagram)
{
    for (const int error : {ENOBUFS, EMSGSIZE}) {
        interposed::fail(interposed::Call::sendmsg, error, 1);
        sink()(4, "text");
        const auto entry = daemon.next();
        ASSERT_TRUE(entry);
        EXPECT_TRUE(entry->wasFile);
        EXPECT_EQ(entry->fields.at("MESSAGE"), "text");
    }
    EXPECT_THAT(elsewhere, IsEmpty());
}

TEST_F(TheJournal, ReceivesNoFileWhereTheDatagramFailsOtherwise)
{
    interposed::fail(interposed::Call::sendmsg, EACCES, 1);
    sink()(4, "text");
    EXPECT_EQ(interposed::count(interposed::Call::sendmsg), 1U);
    EXPECT_THAT(elsewhere, ElementsAre("4 text"));
    EXPECT_FALSE(daemon.datagram());
}

TEST_F(TheJournal, ReceivesAFileOnceWhenASignalInterruptsItsWriting)
{
    interposed::fail(interposed::Call::sendmsg, EMSGSIZE, 1);
    bool isInterrupted = false;
    const interposed::Write once([&](int descriptor, const void* data, std::size_t size) -> ssize_t {
        if (std::exchange(isInterrupted, true))
            return interposed::Write::real(descriptor, data, size);
        errno = EINTR;
        return -1;
    });
    sink()(4, "text");
    EXPECT_EQ(interposed::count(interposed::Call::sendmsg), 2U);
    const auto entry = daemon.next();
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->fields.at("MESSAGE"), "text");
    EXPECT_FALSE(daemon.datagram());
}

TEST_F(TheJournal, ReceivesAFileWhereDescriptorZeroIsClosed)
{
    const LogCallback log = sink();
    const int kept = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 10);
    ::close(STDIN_FILENO);
    interposed::fail(interposed::Call::sendmsg, EMSGSIZE, 1);
    log(4, "text");
    if (kept >= 0) {
        ::dup2(kept, STDIN_FILENO);
        ::close(kept);
    }
    const auto entry = daemon.next();
    ASSERT_TRUE(entry);
    EXPECT_TRUE(entry->wasFile);
    EXPECT_EQ(entry->fields.at("MESSAGE"), "text");
}

TEST_F(TheJournal, ReceivesNoFileThatIsIncompleteOrCouldBeChanged)
{
    const std::ptrdiff_t before = openDescriptors();
    const LogCallback log = sink();
    const auto fileOf = [&](const char* line) {
        interposed::fail(interposed::Call::sendmsg, EMSGSIZE, 1);
        log(4, line);
    };
    interposed::fail(interposed::Call::memfdCreate, EMFILE, 1);
    fileOf("no file");
    interposed::fail(interposed::Call::addSeals, EPERM, 1);
    fileOf("not sealed");
    {
        const interposed::Write full([](int, const void*, std::size_t) -> ssize_t {
            errno = ENOSPC;
            return -1;
        });
        fileOf("not written");
    }
    EXPECT_THAT(elsewhere, ElementsAre("4 no file", "4 not sealed", "4 not written"));
    EXPECT_FALSE(daemon.datagram());
    EXPECT_EQ(openDescriptors(), before + 1) << "the callback's socket";
}

TEST_F(TheJournal, TakesOneDescriptorForACallbackAndItsCopies)
{
    const std::ptrdiff_t before = openDescriptors();
    {
        const LogCallback log = sink();
        const LogCallback copy = log;  // NOLINT: the copy is what is looked at
        EXPECT_EQ(openDescriptors(), before + 1);
        copy(4, std::string(2'000'000, 'x').c_str());
        log(4, "text");
        EXPECT_EQ(openDescriptors(), before + 1) << "the file is the journal's now";
        EXPECT_TRUE(daemon.datagram());
        EXPECT_TRUE(daemon.datagram());
    }
    EXPECT_EQ(openDescriptors(), before);
}

/// Standard input, output and error are closed while it lives.
class NoStandardDescriptors
{
public:
    NoStandardDescriptors()
    {
        for (int i = 0; i < 3; ++i) {
            m_kept[i] = ::fcntl(i, F_DUPFD_CLOEXEC, 10);
            ::close(i);
        }
    }
    ~NoStandardDescriptors()
    {
        for (int i = 0; i < 3; ++i) {
            ::dup2(m_kept[i], i);
            ::close(m_kept[i]);
        }
    }
    NoStandardDescriptors(const NoStandardDescriptors&) = delete;
    NoStandardDescriptors& operator=(const NoStandardDescriptors&) = delete;

    static int open() { return static_cast<int>(std::count_if(kAll.begin(), kAll.end(), isOpen)); }

private:
    static constexpr std::array<int, 3> kAll{0, 1, 2};
    static bool isOpen(int descriptor) { return ::fcntl(descriptor, F_GETFD) >= 0; }

    int m_kept[3] = {-1, -1, -1};
};

TEST_F(TheJournal, LeavesDescriptorsThatTheApplicationHasClosedToIt)
{
    int open = -1;
    std::vector<int> written;
    {
        const NoStandardDescriptors none;
        const LogCallback log = sink();
        open = none.open();
        const interposed::Write noting([&](int descriptor, const void* data, std::size_t size) {
            written.push_back(descriptor);
            return interposed::Write::real(descriptor, data, size);
        });
        log(4, "text");
        log(4, std::string(2'000'000, 'x').c_str());
    }
    EXPECT_EQ(open, 0);
    EXPECT_THAT(written, ElementsAre(Gt(2)));
    EXPECT_THAT(fields(), Contains(Pair("MESSAGE", "text")));
    EXPECT_TRUE(daemon.next()) << "the file";
    EXPECT_THAT(elsewhere, IsEmpty());
}

TEST_F(TheJournal, IsReplacedWhereItsSocketCannotBeMovedFromAStandardDescriptor)
{
    int open = -1;
    {
        const NoStandardDescriptors none;
        interposed::fail(interposed::Call::moveDescriptor, EMFILE, 1);
        const LogCallback log = sink();
        log(4, "text");
        interposed::forget();
        open = none.open();
    }
    EXPECT_THAT(elsewhere, ElementsAre("4 text"));
    EXPECT_EQ(open, 0);
}

TEST_F(TheJournal, ThatIsFullIsNotWaitedFor)
{
    const LogCallback log = sink();
    std::size_t taken = 0;
    for (log(4, "text"); elsewhere.empty() && taken < 100'000; ++taken)
        log(4, "text");
    EXPECT_THAT(elsewhere, ElementsAre("4 text"));
    ASSERT_GT(taken, 0U);
    for (std::size_t i = 0; i < taken; ++i)
        ASSERT_TRUE(daemon.next()) << i;
    EXPECT_FALSE(daemon.next());
    log(4, "later");
    EXPECT_THAT(fields(), Contains(Pair("MESSAGE", "later")));
}

TEST_F(TheJournal, AtAPathTooLongForASocketIsReplaced)
{
    toJournal("navigator", 2, otherwise, '/' + std::string(200, 'x'))(5, "text");
    EXPECT_THAT(elsewhere, ElementsAre("5 text"));
}

TEST_F(TheJournal, ThatIsNotThereLosesTheLineWhereNothingReplacesIt)
{
    const LogCallback log = toJournal("navigator", 2, {}, "/nowhere/at/all");
    errno = 77;
    log(5, "text");
    EXPECT_EQ(errno, 77);
}

TEST_F(TheJournal, KnowsTheProgramByItsNameWhenNoneIsGiven)
{
    toJournal({}, 2, otherwise, daemon.path())(2, "text");
    EXPECT_EQ(fields()["SYSLOG_IDENTIFIER"], "logsink_tests");
}

TEST_F(TheJournal, LeavesErrnoAlone)
{
    daemon.stop();
    errno = 77;
    sink()(4, "text");
    EXPECT_EQ(errno, 77);
}

TEST_F(TheJournal, ReceivesWholeLinesFromManyThreads)
{
    static thread_local bool isTaken = false;
    const LogCallback log = toJournal(
        "navigator", 2, [](int, const char*) { isTaken = false; }, daemon.path());
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([log, i] {
            for (int j = 0; j < 50; ++j)
                for (isTaken = false; !isTaken;) {  // again while the journal is full
                    isTaken = true;
                    log(2, ("KelArc::f." + std::to_string(i) + ": line " + std::to_string(j)).c_str());
                }
        });
    std::map<std::string, int> perThread;
    for (int i = 0; i < 200;) {  // read meanwhile: the socket holds only a few
        const auto entry = daemon.next();
        if (!entry) {
            std::this_thread::yield();
            continue;
        }
        const std::string line = entry->fields.at("CODE_LINE");
        EXPECT_EQ(entry->fields.at("MESSAGE"),
                  "KelArc::f." + line + ": line " + std::to_string(perThread[line]));  // in each thread's order
        ++perThread[line];
        ++i;
    }
    for (std::thread& each : threads)
        each.join();
    EXPECT_THAT(perThread, UnorderedElementsAre(Pair("0", 50), Pair("1", 50), Pair("2", 50), Pair("3", 50)));
}

TEST_F(TheJournal, ReceivesTheLibrarysOwnLines)
{
    kelarc::KelArc modem(sink());
    modem.setMinElevation(46, [](int, bool) {});
    auto refused = fields();
    EXPECT_EQ(refused["MESSAGE"], "KelArc::setMinElevation.962: Invalid minimum elevation, out of bounds: 46");
    EXPECT_EQ(refused["CODE_FUNC"], "setMinElevation");
    EXPECT_EQ(refused["CODE_LINE"], "962");

    std::promise<void> answered;
    modem.getArcVersion([&](int, std::string&&) { answered.set_value(); });
    ASSERT_EQ(answered.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
    auto result = fields();
    EXPECT_EQ(result["CODE_FUNC"], "logArcResult");
    EXPECT_EQ(result["CODE_LINE"], "1224");
    EXPECT_EQ(result["PRIORITY"], "6");
}

}  // namespace
