#include "service/service_support.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using namespace service_test;
using std::chrono::milliseconds;

constexpr milliseconds kLate{20};
constexpr const char* kOpen = R"({"id":1,"call":"ARC_Open","args":{},"thread":1})";
constexpr const char* kVersions = R"({"id":2,"call":"ARC_GetArcVersion","args":{},"thread":1})";
constexpr const char* kOpened = R"({"id":1,"code":0,"out":{}})";

/// ARC_Open is late, ARC_GetArcVersion is not.
std::unique_ptr<arcsim::PeerHandler> lateModem(asio::io_context& context)
{
    arcsim::modem::Fault fault;
    fault.request = arcsim::indexOf(arcsim::Function::Open);
    fault.latency = arcsim::modem::Latency::fixed(kLate);
    arcsim::ScenarioFile scenario;
    scenario.modem.faults = {fault};
    return modemService(context, scenario);
}

std::unique_ptr<arcsim::PeerHandler> lateReplay(asio::io_context& context)
{
    record_test::RecordingText text;
    for (int thread = 1; thread <= 20; ++thread)
        text.begin("ARC_Open", "{}", thread).end(0, "{}", kLate.count() * 1000);
    text.begin("ARC_GetArcVersion", "{}", 21).end(0, R"({"version":"v"})", 0);
    return replayService(context, text.recording());
}

using Make = std::unique_ptr<arcsim::PeerHandler> (*)(asio::io_context&);

class ALateAnswer : public testing::TestWithParam<Make>
{
protected:
    ALateAnswer() { m_served.serve(GetParam()(m_served.context())); }

    /// Its time has come, and nobody has looked.
    static void becomeDue() { std::this_thread::sleep_for(2 * kLate); }

    Served m_served;
};

TEST_P(ALateAnswer, ComesInTime)
{
    Served::Connection& client = m_served.greet();
    client.say(kOpen);
    m_served.settle();
    EXPECT_TRUE(client.take().empty());
    becomeDue();
    m_served.settle();
    EXPECT_EQ(client.take(), std::vector<std::string>{kOpened});
}

TEST_P(ALateAnswer, IsForgottenWithTheClientThatLeavesJustThen)
{
    for (int i = 0; i < 10; ++i) {
        Served::Connection& client = m_served.greet();
        client.say(kOpen);
        client.say(kOpen);
        m_served.settle();
        becomeDue();
        client.hangUp();  // both are there when the service looks: the end first, then the answer that is due
        m_served.settle();
    }
    Served::Connection& other = m_served.greet();
    other.say(kVersions);
    m_served.settle();
    const auto answer = other.take();
    ASSERT_EQ(answer.size(), 1U);
    EXPECT_EQ(Json::parse(answer[0])["code"], 0);
}

TEST_P(ALateAnswer, IsForgottenWithTheServiceThatEndsJustThen)
{
    Served::Connection& client = m_served.greet();
    client.say(kOpen);
    m_served.settle();
    becomeDue();
    m_served.dropService();
    m_served.context().restart();
    m_served.context().poll();
    client.hear();
    EXPECT_TRUE(client.take().empty());
}

INSTANTIATE_TEST_SUITE_P(OfEachService, ALateAnswer, testing::Values(lateModem, lateReplay));

TEST(ALateAnswerOfTheModem, DoesNotComeOnceTheClientWasCutOff)
{
    Served served;
    served.serve(lateModem(served.context()));
    Served::Connection& operating = served.greet();
    Served::Connection& client = served.greet();
    client.say(kOpen);
    served.settle();
    std::this_thread::sleep_for(2 * kLate);
    operating.say(R"({"id":3,"control":"outage","forMs":60000})");
    served.settle();
    EXPECT_TRUE(client.take().empty());
    EXPECT_TRUE(client.isOver());
}

TEST(AReset, LeavesTheModemAsItWasWhenThereCanBeNoNewOne)
{
    Served served;
    arcsim::ModemService::Options options;
    options.makeHost = [made = 0]() mutable {
        if (++made > 1)
            throw std::runtime_error("the scenario has gone");
        auto host = std::make_unique<arcsim::ModemHost>(arcsim::ScenarioFile{}, arcsim::ScenarioClock::Mode::real);
        host->setRealisticLatency(false);
        return host;
    };
    served.serve(std::make_unique<arcsim::ModemService>(served.context(), std::move(options)));
    Served::Connection& client = served.greet();
    client.say(kOpen);
    client.say(R"({"id":2,"control":"fault","function":"ARC_Close","hang":true})");
    client.say(R"({"id":3,"call":"ARC_Close","args":{},"thread":1})");
    client.say(R"({"id":4,"control":"reset"})");
    client.say(R"({"id":5,"call":"ARC_EnableLogging","args":{"zone":1,"text":"t"},"thread":1})");
    served.settle();
    EXPECT_EQ(client.take(), (std::vector<std::string>{kOpened, R"({"id":2,"ok":true,"result":{}})",
                                                       R"({"id":4,"ok":false,"error":"the scenario has gone"})",
                                                       R"({"id":5,"code":0,"out":{}})"}))
        << "open, and the call still hangs";
}

}  // namespace
