// Reading any named file ends, has a size limit, and accepts only the right kinds of files.

#include "support/Files.h"
#include "support/Nesting.h"

#include "files/Folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

namespace {

bool g_hasMoreRights = false;

}  // namespace

extern "C" char* secure_getenv(const char* name) noexcept
{
    return g_hasMoreRights ? nullptr : std::getenv(name);
}

namespace {

using files_test::Folder;
using support::FileError;
using support::nestingOf;
using support::readFile;
using support::ReadRules;

const ReadRules kRegular{1000, "the name of a file", false, false};
const ReadRules kStream{1000, "the name of a file", true, false};
const ReadRules kOwn{1000, "the name of a file", false, true};

std::string errorOf(const std::string& path, const ReadRules& rules)
{
    try {
        return "read: " + readFile(path, rules);
    } catch (const FileError& error) {
        return error.what();
    }
}

std::string told(const std::string& path, const std::string& reason)
{
    return path + ": cannot be read: " + reason + "; accepted: the name of a file";
}

TEST(AFileThatIsRead, GivesItsContent)
{
    const Folder folder;
    EXPECT_EQ(readFile(folder.write("a", "content"), kRegular), "content");
    EXPECT_EQ(readFile(folder.write("empty", ""), kRegular), "");
    EXPECT_EQ(readFile(folder.write("most", std::string(1000, 'x')), kRegular), std::string(1000, 'x'));
}

TEST(AFileThatIsRead, IsNotLargerThanAccepted)
{
    const Folder folder;
    const std::string path = folder.write("large", std::string(1001, 'x'));
    EXPECT_EQ(errorOf(path, kRegular), path + ": a larger file is not accepted; accepted: at most 1000 bytes");
    EXPECT_EQ(errorOf("/dev/zero", kStream), "/dev/zero: a larger file is not accepted; accepted: at most 1000 bytes");
    EXPECT_EQ(errorOf("/proc/self/smaps", kRegular),
              "/proc/self/smaps: a larger file is not accepted; accepted: at most 1000 bytes")
        << "which says that it has no bytes";
}

TEST(AFileThatIsRead, IsWhatIsAccepted)
{
    const Folder folder;
    EXPECT_EQ(errorOf(folder.path("none"), kRegular), told(folder.path("none"), "No such file or directory"));
    EXPECT_EQ(errorOf(folder.path("."), kRegular), told(folder.path("."), "Is a directory"));
    EXPECT_EQ(errorOf(folder.path("."), kStream), told(folder.path("."), "Is a directory"));
    EXPECT_EQ(errorOf("/dev/zero", kRegular), told("/dev/zero", "Is no regular file"));
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(errorOf(folder.path("pipe"), kRegular), told(folder.path("pipe"), "Is no regular file"));
    EXPECT_EQ(errorOf(folder.path("pipe"), kStream), "read: ") << "nobody writes to it";
}

TEST(AFileThatIsRead, MayBeAPipeThatIsFilledSlowly)
{
    const Folder folder;
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const int writer = ::open(pipe.c_str(), O_RDWR);
    ASSERT_EQ(::write(writer, "first,", 6), 6);
    std::string read;
    std::thread reader([&] { read = readFile(pipe, kStream); });
    for (int unread = 6; unread > 0;)  // until it waits for more
        ASSERT_EQ(::ioctl(writer, FIONREAD, &unread), 0);
    ASSERT_EQ(::write(writer, "second", 6), 6);
    ::close(writer);
    reader.join();
    EXPECT_EQ(read, "first,second");
}

TEST(AFileThatIsBelieved, BelongsToTheUserAlone)
{
    const Folder folder;
    const std::string path = folder.write("own", "content");
    ::chmod(path.c_str(), 0600);
    EXPECT_EQ(errorOf(path, kOwn), "read: content");
    for (const mode_t mode : {0620, 0602}) {
        ::chmod(path.c_str(), mode);
        EXPECT_EQ(errorOf(path, kOwn), told(path, "Others may write to it")) << mode;
        EXPECT_EQ(errorOf(path, kRegular), "read: content");
    }
    ::chmod(path.c_str(), 0644);
    std::filesystem::create_symlink(path, folder.path("link"));
    EXPECT_EQ(errorOf(folder.path("link"), kOwn), told(folder.path("link"), "Is a symbolic link"));
    EXPECT_EQ(errorOf(folder.path("link"), kRegular), "read: content");
}

/// A file of another user: made by root, or one of root's.
TEST(AFileThatIsBelieved, IsNotAnothersFile)
{
    const Folder folder;
    const std::string path = folder.write("foreign", "content");
    const bool isRoot = ::geteuid() == 0;
    if (isRoot) {
        ASSERT_EQ(::chown(path.c_str(), 12345, 12345), 0);
    }
    const std::string foreign = isRoot ? path : "/etc/passwd";
    EXPECT_EQ(errorOf(foreign, kOwn), told(foreign, isRoot ? "Belongs to the user 12345" : "Belongs to the user 0"));
}

TEST(StandardInput, IsReadToItsEndAndBounded)
{
    const Folder folder;
    const int before = ::dup(STDIN_FILENO);
    const auto from = [&](const std::string& content) {
        const int file = ::open(folder.write("in", content).c_str(), O_RDONLY);
        ::dup2(file, STDIN_FILENO);
        ::close(file);
    };
    from("typed");
    EXPECT_EQ(support::readStandardInput(kStream), "typed");
    from(std::string(1001, 'x'));
    EXPECT_THROW(support::readStandardInput(kStream), FileError);
    ::dup2(before, STDIN_FILENO);
    ::close(before);
}

TEST(AFileOfTheEnvironment, IsTheVariablesValue)
{
    ::unsetenv("KELARC_TEST_FILE");
    EXPECT_EQ(support::fileOfEnvironment("KELARC_TEST_FILE"), "");
    ::setenv("KELARC_TEST_FILE", "a/b", 1);
    EXPECT_EQ(support::fileOfEnvironment("KELARC_TEST_FILE"), "a/b");
    g_hasMoreRights = true;
    EXPECT_EQ(support::fileOfEnvironment("KELARC_TEST_FILE"), "") << "in a program with more rights than its user";
    g_hasMoreRights = false;
    ::unsetenv("KELARC_TEST_FILE");
}

TEST(TheNestingOfAText, IsThatOfItsObjectsAndArrays)
{
    EXPECT_EQ(nestingOf(""), 0U);
    EXPECT_EQ(nestingOf("7"), 0U);
    EXPECT_EQ(nestingOf("[]"), 1U);
    EXPECT_EQ(nestingOf(R"({"a":[1,{"b":2}],"c":[[]]})"), 3U);
    EXPECT_EQ(nestingOf("[][][]"), 1U);
    EXPECT_EQ(nestingOf(R"({"a[[[[":"{{\"[[[\\"})"), 1U) << "brackets in texts are none";
    EXPECT_EQ(nestingOf(R"(["\\",[]])"), 2U);
    EXPECT_EQ(nestingOf("]]][[["), 3U);
    EXPECT_EQ(nestingOf(std::string(100000, '[')), 100000U);
    EXPECT_EQ(nestingOf("\"\\"), 0U);
}

}  // namespace
