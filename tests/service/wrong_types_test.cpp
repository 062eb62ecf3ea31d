// Every kind of value in every member of every message, to both services: each gets an answer or a refusal that names
// what is accepted, and other clients are served as before.

#include "service/service_support.h"

#include <gtest/gtest.h>

namespace {

using namespace service_test;

constexpr const char* kMessages[] = {
    R"({"hello":"client","name":"raw","pid":1,"open":false,"handler":false})",
    R"({"handler":true})",
    R"({"id":1,"call":"ARC_SetNotificationMethod","args":{"method":1},"thread":1})",
    R"({"id":1,"call":"ARC_Open","args":{},"thread":1})",
    R"({"id":1,"call":"ARC_Close","args":{},"thread":1})",
    R"({"id":1,"call":"ARC_RegisterNotification","args":{"handler":"set"},"thread":1})",
    R"({"id":1,"call":"ARC_GetArcVersion","args":{},"thread":1})",
    R"({"id":1,"call":"ARC_GetRilVersion","args":{"primary":"set","secondary":"set","size":64},"thread":1})",
    R"({"id":1,"call":"ARC_EnableLogging","args":{"zone":1,"text":"t"},"thread":1})",
    R"({"id":1,"call":"ARC_AtcTunneling","args":{"command":"AT","answer":"set"},"thread":1})",
    (R"({"id":1,"call":"ARC_CheckModuleSetting","args":{"key":"Power/Cpu","value":null,"reply":"set","replySize":255,)"
     R"("writeIndicator":null},"thread":1})"),
    R"({"id":1,"call":"ARC_StartGNSSraw","args":{"text":"set","size":255},"thread":1})",
    R"({"id":1,"call":"ARC_StopGNSS","args":{},"thread":1})",
    R"({"id":1,"call":"ARC_ForceStopGNSS","args":{},"thread":1})",
    R"({"id":1,"call":"ARC_ResetAGNSS","args":{},"thread":1})",
    R"({"id":1,"call":"ARC_CurrentLSTA","args":{"arcTechnologyId":10,"out":"set"},"thread":1})",
    R"({"id":1,"call":"ARC_EnableLSTA","args":{"arcTechnologyId":10,"enable":true,"parameter":1},"thread":1})",
    R"({"id":1,"control":"status"})",
    R"({"id":1,"control":"set","key":"Power/Cpu","value":"max","force":false,"quoted":"\"max\""})",
    R"({"id":1,"control":"event","eventId":72,"payload":"01","count":1,"everyMs":0,"numbered":false})",
    R"({"id":1,"control":"lsta","system":"gps","status":1,"value":1.5,"auto":false})",
    (R"({"id":1,"control":"fault","function":"ARC_Open","call":1,"count":1,"fromMs":0,"untilMs":1,"times":1,"code":5,)"
     R"("latencyMs":1,"hang":false,"indicator":1,"replyLength":1,"withoutQuotes":true})"),
    R"({"id":1,"control":"clear","function":"ARC_Open"})",
    R"({"id":1,"control":"no-fix","forMs":1,"off":false})",
    R"({"id":1,"control":"jam","systems":["gps"],"forMs":1,"off":false})",
    R"({"id":1,"control":"advance","ms":1})",
    R"({"id":1,"control":"latencies","on":false})",
    R"({"id":1,"control":"quoted-settings"})",
    R"({"id":1,"control":"reset","latencies":false})",
};

const Json& values()
{
    static const Json all = Json::parse(R"([null, true, false, 0, 1, -1, 2147483648, 9223372036854775808, 1.5, 1e300,
        "", "x", "set", "client", "Ā", "\u0000", [], [1], [[]], {}, {"a": {}}])");
    return all;
}

/// The message with each of its members, those of its arguments too, replaced by each value, and once left out.
std::vector<Json> changesOf(const Json& message)
{
    std::vector<Json> changed;
    const auto change = [&](const Json& object, const auto& put) {
        for (const auto& [key, right] : object.items()) {
            for (const Json& value : values()) {
                Json other = object;
                other[key] = value;
                changed.push_back(put(other));
            }
            Json less = object;
            less.erase(key);
            changed.push_back(put(less));
        }
        Json more = object;
        more["x"] = 1;
        changed.push_back(put(more));
    };
    change(message, [](const Json& whole) { return whole; });
    if (message.contains("args"))
        change(message["args"], [&](const Json& arguments) {
            Json whole = message;
            whole["args"] = arguments;
            return whole;
        });
    return changed;
}

/// A refusal says what is accepted, which no exception of a library does.
void expectReadable(const std::string& error, const std::string& said)
{
    static const std::vector<std::string> known{"accepted: ", "second hello", "a connection begins with",
                                                "a replay knows the control stop only"};
    const auto has = [&](const std::string& text) { return error.find(text) != std::string::npos; };
    EXPECT_TRUE(std::any_of(known.begin(), known.end(), has)) << said << " -> " << error;
    EXPECT_EQ(error.find("exception"), std::string::npos) << said << " -> " << error;
}

class EveryService : public testing::TestWithParam<bool>
{
protected:
    EveryService()
    {
        if (GetParam())
            m_served.serve(modemService(m_served.context()));
        else
            m_served.serve(
                replayService(m_served.context(), record_test::RecordingText().call("ARC_Open").recording()));
    }

    /// Says it to the service on a connection of its own. What comes is an answer, or a refusal.
    void tryOut(const Json& message)
    {
        const std::string said = arcsim::lineOf(message);
        Served::Connection& client = message.contains("hello") ? m_served.connect() : m_served.greet();
        client.say(std::string_view(said).substr(0, said.size() - 1));
        client.say(R"({"id":77,"control":"nothing"})");  // answered, and so is known to be dealt with
        m_served.settle();
        const std::vector<std::string> lines = client.take();
        ASSERT_FALSE(lines.empty()) << said;
        bool wentOn = false;
        for (const std::string& line : lines) {
            const Json answer = Json::parse(line);
            wentOn = wentOn || answer.value("id", 0) == 77;
            if (answer.contains("error") && answer.value("id", 0) != 77)
                expectReadable(answer["error"], said);
        }
        EXPECT_NE(client.isOver(), wentOn) << said << " -> " << lines.back();
        client.hangUp();
        m_served.settle();
    }

    Served m_served;
};

TEST_P(EveryService, AnswersOrRefusesEveryKindOfValueInEveryMember)
{
    for (const char* const message : kMessages)
        for (const Json& changed : changesOf(Json::parse(message)))
            tryOut(changed);
    Served::Connection& other = m_served.connect();
    other.say(kHello);
    m_served.settle();
    EXPECT_EQ(other.take(), std::vector<std::string>{R"({"hello":"arcsim","version":"1.0","protocol":1})"});
}

TEST_P(EveryService, RefusesAThreadThatIsNone)
{
    Served::Connection& client = m_served.greet();
    client.say(R"({"id":1,"call":"ARC_Open","args":{},"thread":"x"})");
    m_served.settle();
    EXPECT_EQ(client.take(),
              std::vector<std::string>{
                  R"({"error":"thread: \"x\" is not accepted; accepted: a whole number from 0 to 2147483647"})"});
    EXPECT_TRUE(client.isOver());
}

INSTANTIATE_TEST_SUITE_P(OfBoth, EveryService, testing::Bool());

}  // namespace
