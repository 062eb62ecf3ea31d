// The file that a killed daemon left is used if it is unchanged, and not trusted otherwise.

#include "arcsim/Memory.h"

#include "files/Folder.h"
#include "support/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

namespace {

using arcsim::ModemHost;
using arcsim::readMemory;
using arcsim::Remembered;
using arcsim::writeMemory;
using files_test::contentOf;
using files_test::Folder;
using std::chrono::milliseconds;
using testing::HasSubstr;

ModemHost::Memory example()
{
    ModemHost::Memory memory;
    memory.quotedSettings = {{"Power/Cpu", "\"max\""}, {"A\xFF", "no quotes \x01"}};
    memory.engineOn = true;
    memory.lstaPeriods = {3, std::nullopt, 0, -1};
    memory.time = milliseconds(5000);
    return memory;
}

std::string written(const Folder& folder)
{
    std::string state;
    writeMemory(folder.path("m"), "s.json|", example(), state);
    return folder.path("m");
}

TEST(AModemsMemory, IsReadAsItWasWritten)
{
    const Folder folder;
    const auto before = std::chrono::steady_clock::now();
    const Remembered remembered = readMemory(written(folder), "s.json|");
    const auto passed = std::chrono::ceil<milliseconds>(std::chrono::steady_clock::now() - before);
    ASSERT_TRUE(remembered.memory) << remembered.refusal;
    EXPECT_EQ(remembered.refusal, "");
    EXPECT_EQ(remembered.memory->quotedSettings, example().quotedSettings);
    EXPECT_TRUE(remembered.memory->engineOn);
    EXPECT_EQ(remembered.memory->lstaPeriods, example().lstaPeriods);
    EXPECT_GE(remembered.memory->time, milliseconds(5000));
    EXPECT_LE(remembered.memory->time, milliseconds(5001) + passed) << "a millisecond is lost in rounding";
    EXPECT_EQ(files_test::modeOf(folder.path("m")), 0600U);
}

TEST(AModemsMemory, IsWrittenWhenItHasChanged)
{
    const Folder folder;
    std::string state;
    writeMemory(folder.path("m"), "s", example(), state);
    std::filesystem::remove(folder.path("m"));
    writeMemory(folder.path("m"), "s", example(), state);
    EXPECT_TRUE(folder.names().empty());
    ModemHost::Memory other = example();
    other.time.reset();
    writeMemory(folder.path("m"), "s", other, state);
    EXPECT_EQ(folder.names().size(), 1U);
    EXPECT_EQ(readMemory(folder.path("m"), "s").memory->time, std::nullopt);
}

TEST(AModemsMemory, ThatCouldNotBeWrittenIsTriedAgain)
{
    const Folder folder;
    std::string state;
    ASSERT_TRUE(std::filesystem::create_directory(folder.path("m")));
    EXPECT_THROW(writeMemory(folder.path("m"), "s", example(), state), support::FileError);
    std::filesystem::remove(folder.path("m"));
    writeMemory(folder.path("m"), "s", example(), state);
    EXPECT_TRUE(readMemory(folder.path("m"), "s").memory);
}

TEST(AModemsMemory, OfAnotherScenarioOrThatIsNotThereIsNoneWithoutAWord)
{
    const Folder folder;
    for (const auto& [file, scenario] :
         {std::pair(written(folder), "t.json|"), std::pair(folder.path("none"), "s"), std::pair(std::string(), "s")}) {
        const Remembered remembered = readMemory(file, scenario);
        EXPECT_FALSE(remembered.memory) << file;
        EXPECT_EQ(remembered.refusal, "") << file;
    }
}

void expectRefused(const std::string& file, const std::string& why)
{
    const Remembered remembered = readMemory(file, "s.json|");
    EXPECT_FALSE(remembered.memory) << why;
    EXPECT_THAT(remembered.refusal, HasSubstr(why));
    EXPECT_THAT(remembered.refusal, HasSubstr(file));
}

TEST(AModemsMemory, ThatOthersCouldHaveWrittenIsNotBelieved)
{
    const Folder folder;
    const std::string file = written(folder);
    ::chmod(file.c_str(), 0620);
    expectRefused(file, "Others may write to it; accepted: what a daemon that was killed has left");
    ::chmod(file.c_str(), 0600);
    std::filesystem::create_symlink(file, folder.path("link"));
    expectRefused(folder.path("link"), "Is a symbolic link");
    std::filesystem::create_symlink(folder.path("nothing"), folder.path("dangling"));
    expectRefused(folder.path("dangling"), "Is a symbolic link");
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    expectRefused(folder.path("pipe"), "Is no regular file");
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(file.c_str(), 12345, 0), 0);
        expectRefused(file, "Belongs to the user 12345");
    }
}

TEST(AModemsMemory, ThatWasEditedIsNotBelieved)
{
    const Folder folder;
    const std::string whole = contentOf(written(folder));
    const auto edited = [&](const std::string& from, const std::string& to) {
        std::string text = whole;
        text.replace(text.find(from), from.size(), to);
        return folder.write("edited", text);
    };
    for (const auto& [from, to] : {std::pair("max", "std"), std::pair("true", "false"), std::pair("[3,", "[4,"),
                                   std::pair("Power/Cpu", "Power/Psm"), std::pair("\"beginMs\":", "\"beginMs\":1")})
        expectRefused(edited(from, to), "was changed since a daemon wrote it");
    expectRefused(edited("\"memory\":1", "\"memory\":2"), "memory: 2 is not accepted");
    for (std::size_t length = 0; length + 1 < whole.size(); length += 7)
        expectRefused(folder.write("edited", whole.substr(0, length)), "edited");
    expectRefused(folder.write("edited", std::string(100000, '[')), "more nesting is not accepted");
    expectRefused(folder.write("edited", "7"), "edited");
    expectRefused(folder.write("edited", R"({"memory":1,"checksum":"","content":7})"), "was changed");
    expectRefused(folder.write("edited", std::string((16U << 20U) + 1, ' ')), "a larger file is not accepted");
}

}  // namespace
