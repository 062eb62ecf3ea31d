// Memory use after a long run.

#include "client/CallBook.h"
#include "sim/model_support.h"
#include "support/HeldBytes.h"

namespace {

using arcsim::Answer;
using arcsim::Function;
using model_test::OpenModem;
using model_test::SimulatedModem;

constexpr std::size_t kRoomBytes = 200'000;  // for what threads do meanwhile; one byte a call would be a million

TEST(ALongRun, HoldsAfterAMillionCallsWhatItHeldAfterAThousand)
{
    arcsim::CallBook book;
    const std::vector<std::string> arguments{"Power/Cpu", "a value that does not fit into the string itself", "set"};
    const auto call = [&](int count) {
        for (int i = 0; i < count; ++i)
            book.enter(Function::CheckModuleSetting, arguments);
    };
    call(1000);
    const std::size_t before = heldBytes();
    ASSERT_GT(before, 100'000U) << "the measure sees what is held";
    call(999'000);
    EXPECT_LT(heldBytes(), before + kRoomBytes);
    EXPECT_TRUE(book.waitForCalls(Function::CheckModuleSetting, 1'000'000, std::chrono::seconds(0)));
}

TEST_F(OpenModem, HoldsNothingOfCallsAndThreadsThatAreOver)
{
    const auto call = [](int count) {
        for (int i = 0; i < count; ++i) {
            char reply[64];
            ARC_GetArcVersion();
            ARC_CheckModuleSetting("Power/Cpu", nullptr, reply, sizeof reply, nullptr);
            if (i % 100 == 0)
                std::thread([] { ARC_SetNotificationMethod(1); }).join();
        }
    };
    call(1000);
    const std::size_t before = heldBytes();
    call(10'000);
    EXPECT_LT(heldBytes(), before + kRoomBytes);
}

TEST_F(SimulatedModem, ForgetsAScriptWithTheCallThatItWasFor)
{
    const auto held = std::make_shared<int>(0);
    Answer answer;
    answer.during = [held] {};
    arcsim::answerCall(Function::Open, 1, answer);
    answer.during = nullptr;
    EXPECT_EQ(held.use_count(), 2);
    ARC_Open();
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(SimulatedModem, KeepsTheLatestThousandCallsInOrder)
{
    ARC_Open();
    for (int i = 0; i < 998; ++i)
        ARC_GetArcVersion();
    ARC_Close();
    ASSERT_EQ(arcsim::calls().size(), 1000U);
    EXPECT_EQ(arcsim::calls().front().function, Function::Open);
    EXPECT_EQ(arcsim::calls(Function::Open).size(), 1U);

    ARC_StopGNSS();
    ARC_GetArcVersion();
    const std::vector<arcsim::Call> kept = arcsim::calls();
    ASSERT_EQ(kept.size(), 1000U);
    EXPECT_EQ(kept.front().function, Function::GetArcVersion);
    EXPECT_EQ(kept.front().number, 2U) << "the first two calls are forgotten";
    EXPECT_EQ(kept[997].function, Function::Close);
    EXPECT_EQ(kept[998].function, Function::StopGNSS);
    EXPECT_EQ(kept[999].number, 999U) << "numbers go on";
    EXPECT_TRUE(arcsim::calls(Function::Open).empty());
    EXPECT_TRUE(arcsim::waitForCalls(Function::Open, 1, std::chrono::milliseconds(0))) << "it was called";

    arcsim::reset();
    ARC_Open();
    ASSERT_EQ(arcsim::calls().size(), 1U);
    EXPECT_EQ(arcsim::calls()[0].number, 1U);
}

}  // namespace
