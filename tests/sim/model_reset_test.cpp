// A reset while calls are under way.

#include "sim/model_support.h"

#include <future>

namespace {

using arcsim::Function;
using model_test::EnvironmentScenario;
using model_test::SimulatedModem;

TEST_F(SimulatedModem, AnswersCallsThatWaitedForTheirTimeAfterAReset)
{
    const EnvironmentScenario scenario(R"({"faults":[{"function":"ARC_Open","call":1,"latencyMs":200},
                                                     {"function":"ARC_StopGNSS","call":1,"hang":true}]})");
    auto open = std::async(std::launch::async, [] { return ARC_Open(); });
    auto stop = std::async(std::launch::async, [] { return ARC_StopGNSS(); });
    ASSERT_TRUE(arcsim::waitForCalls(Function::Open, 1));
    ASSERT_TRUE(arcsim::waitForCalls(Function::StopGNSS, 1));
    const auto end = std::chrono::steady_clock::now() + model_test::kLimit;
    do  // once, unless the call that hangs came to the modem only afterwards
        arcsim::reset();
    while (stop.wait_for(std::chrono::milliseconds(20)) != std::future_status::ready &&
           std::chrono::steady_clock::now() < end);
    EXPECT_EQ(stop.get(), 32) << "which hung";
    EXPECT_EQ(open.get(), 0) << "by the modem that is there when its time has come";
}

}  // namespace
