// A file is replaced as a whole or not at all, whatever fails and whatever already exists under its name.

#include "support/Files.h"

#include "files/FailingCalls.h"
#include "files/Folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <thread>
#include <tuple>
#include <unistd.h>

namespace {

using files_test::contentOf;
using files_test::FailingCalls;
using files_test::Folder;
using files_test::modeOf;
using support::FileError;
using support::replaceFile;
using support::writeOutput;
using testing::ElementsAre;

template <typename Action>
std::string errorOf(const Action& action)
{
    try {
        action();
    } catch (const FileError& error) {
        return error.what();
    }
    return "done";
}

std::string errorOfReplacing(const std::string& path)
{
    return errorOf([&] { replaceFile(path, "new", "the name of a file"); });
}

TEST(AReplacedFile, HasTheNewContentAndNothingElseInItsFolder)
{
    const Folder folder;
    const std::string path = folder.write("a", "old and longer");
    replaceFile(path, "new", "a name");
    EXPECT_EQ(contentOf(path), "new");
    replaceFile(folder.path("b"), "", "a name");
    EXPECT_THAT(folder.names(), ElementsAre("a", "b"));
    EXPECT_EQ(contentOf(folder.path("b")), "");
}

TEST(AReplacedFile, IsWhereARelativeNameSays)
{
    const Folder folder;
    const std::string before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path("."));
    replaceFile("plain", "content", "a name");
    std::filesystem::current_path(before);
    EXPECT_EQ(contentOf(folder.path("plain")), "content");
}

TEST(AReplacedFile, MayHaveTheLongestName)
{
    const Folder folder;
    const std::string path = folder.path(std::string(255, 'n'));
    replaceFile(path, "new", "a name");
    EXPECT_EQ(contentOf(path), "new");
}

TEST(AReplacedFile, HasTheModeThatIsAskedForOrThatOfTheOldOneOrThatOfANewOne)
{
    const Folder folder;
    const mode_t before = ::umask(0027);
    replaceFile(folder.path("new"), "x", "a name");
    replaceFile(folder.path("asked"), "x", "a name", 0600);
    const std::string old = folder.write("old", "x");
    ::chmod(old.c_str(), 04751);
    replaceFile(old, "y", "a name");
    const std::string both = folder.write("both", "x");
    replaceFile(both, "y", "a name", 0604);
    ::umask(before);
    EXPECT_EQ(modeOf(folder.path("new")), 0640U);
    EXPECT_EQ(modeOf(folder.path("asked")), 0600U);
    EXPECT_EQ(modeOf(old), 0751U) << "without the right to run as somebody else";
    EXPECT_EQ(modeOf(both), 0604U);
}

TEST(AFileThatCannotBeReplaced, IsKeptAndTheReasonIsTold)
{
    int failures = 0;
    for (const auto& [call, error, reason] :
         {std::tuple("openat", EMFILE, "Too many open files"), std::tuple("write", ENOSPC, "No space left on device"),
          std::tuple("fsync", EIO, "Input/output error"), std::tuple("fchmod", EPERM, "Operation not permitted"),
          std::tuple("close", EDQUOT, "Disk quota exceeded"), std::tuple("renameat", EACCES, "Permission denied")}) {
        for (int at = 1;; ++at) {
            const Folder folder;
            const std::string path = folder.write("good", "old");
            std::string told;
            {
                const FailingCalls failing(call, at, error, true);
                told = errorOfReplacing(path);
                if (!failing.hasFailed())
                    break;
            }
            ++failures;
            EXPECT_THAT(folder.names(), ElementsAre("good")) << call << at;
            // Closing the folder is no news of the file, and its storage comes after the file has taken the place.
            const bool isAfter = call == std::string("close") && at == 2;
            const bool isOfFolder = call == std::string("fsync") && at == 2;
            EXPECT_EQ(contentOf(path), isAfter || isOfFolder ? "new" : "old") << call << at;
            EXPECT_EQ(told,
                      isAfter ? "done" : path + ": cannot be written: " + reason + "; accepted: the name of a file")
                << call << at;
        }
    }
    EXPECT_EQ(failures, 1 + 3 + 2 + 1 + 2 + 1) << "one open, three writes of a byte, file and folder stored, "
                                                  "one mode, file and folder closed, one rename";
}

TEST(AFileThatIsNew, IsNotThereWhenItCannotBeWritten)
{
    for (int at = 1; at <= 3; ++at) {
        const Folder folder;
        const FailingCalls failing("write", at, ENOSPC, true);
        EXPECT_NE(errorOfReplacing(folder.path("new")), "done");
        EXPECT_TRUE(failing.hasFailed());
        EXPECT_THAT(folder.names(), ElementsAre());
    }
}

TEST(AReplacedFile, IsWrittenOnWhenASignalComesInBetween)
{
    const Folder folder;
    for (const char* const call : {"write", "fsync", "close"}) {
        const FailingCalls failing(call, 1, EINTR, true);
        EXPECT_EQ(errorOfReplacing(folder.path("a")), "done") << call;
        EXPECT_TRUE(failing.hasFailed());
        EXPECT_EQ(contentOf(folder.path("a")), "new");
    }
    const FailingCalls failing("fsync", 2, EINVAL);
    EXPECT_EQ(errorOfReplacing(folder.path("a")), "done") << "a file system that cannot store folders";
    EXPECT_TRUE(failing.hasFailed());
}

TEST(AFileThatIsReplaced, IsNeverWhatALinkPointsTo)
{
    const Folder folder;
    const std::string victim = folder.write("victim", "precious");
    std::filesystem::create_symlink(victim, folder.path("link"));
    std::filesystem::create_symlink(folder.path("nothing"), folder.path("dangling"));
    for (const char* const name : {"link", "dangling"}) {
        EXPECT_EQ(errorOfReplacing(folder.path(name)),
                  folder.path(name) + ": cannot be written: Is a symbolic link; accepted: the name of a file");
        EXPECT_EQ(errorOf([&] { writeOutput(folder.path(name), "new", "x"); }),
                  folder.path(name) + ": cannot be written: Is a symbolic link; accepted: x");
    }
    EXPECT_EQ(contentOf(victim), "precious");
    EXPECT_THAT(folder.names(), ElementsAre("dangling", "link", "victim"));
}

TEST(AFileThatIsReplaced, IsNoFolderPipeOrDevice)
{
    const Folder folder;
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    ASSERT_TRUE(std::filesystem::create_directory(folder.path("folder")));
    const auto told = [](const std::string& path, const std::string& reason) {
        return path + ": cannot be written: " + reason + "; accepted: the name of a file";
    };
    EXPECT_EQ(errorOfReplacing(folder.path("pipe")), told(folder.path("pipe"), "Is no regular file"));
    EXPECT_EQ(errorOfReplacing(folder.path("folder")), told(folder.path("folder"), "Is a directory"));
    EXPECT_EQ(errorOfReplacing(folder.path("folder/")), told(folder.path("folder/"), "Is a directory"));
    EXPECT_EQ(errorOfReplacing("/dev/null"), told("/dev/null", "Is no regular file"));
    EXPECT_EQ(errorOfReplacing(""), told("", "No such file or directory"));
    EXPECT_EQ(errorOfReplacing(folder.path("none/a")), told(folder.path("none/a"), "No such file or directory"));
    EXPECT_THAT(folder.names(), ElementsAre("folder", "pipe"));
}

TEST(AnOutput, GoesThroughAPipe)
{
    const Folder folder;
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(errorOf([&] { writeOutput(pipe, "x", "a name"); }),
              pipe + ": cannot be written: Nobody reads from it; accepted: a name");
    const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    const std::string content(200000, 'c');  // more than a pipe holds
    std::thread writer([&] { writeOutput(pipe, content, "a name"); });
    ::fcntl(reader, F_SETFL, O_RDONLY);
    std::string read(content.size(), '.');
    for (std::size_t count = 0; count < read.size();)
        count += static_cast<std::size_t>(std::max<ssize_t>(0, ::read(reader, &read[count], read.size() - count)));
    writer.join();
    ::close(reader);
    EXPECT_EQ(read, content);
    EXPECT_THAT(folder.names(), ElementsAre("pipe")) << "still a pipe";
}

TEST(AnOutput, GoesThroughADevice)
{
    EXPECT_EQ(errorOf([] { writeOutput("/dev/null", "x", "a name"); }), "done");
    EXPECT_EQ(errorOf([] { writeOutput("/dev/full", "x", "a name"); }),
              "/dev/full: cannot be written: No space left on device; accepted: a name");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(AnOutput, ReplacesAFile)
{
    const Folder folder;
    const std::string path = folder.write("a", "old");
    writeOutput(path, "new", "a name");
    EXPECT_EQ(contentOf(path), "new");
}

TEST(StandardOutput, HasSeveralNames)
{
    for (const char* const name : {"-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"})
        EXPECT_TRUE(support::isStandardOutput(name)) << name;
    for (const char* const name : {"", "--", "/dev/stderr", "/dev/fd/10", "stdout"})
        EXPECT_FALSE(support::isStandardOutput(name)) << name;
}

}  // namespace
