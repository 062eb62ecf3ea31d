#include "service/service_support.h"

#include <gtest/gtest.h>

namespace {

using namespace service_test;

struct Row
{
    const char* members;  ///< of the control, one of them unknown
    const char* error;
};

constexpr Row kRows[] = {
    {R"("control":"status","all":true)", "status: all: unknown key; accepted: none"},
    {R"("control":"quoted-settings","key":"x")", "quoted-settings: key: unknown key; accepted: none"},
    {R"("control":"stop","now":true)", "stop: now: unknown key; accepted: none"},
    {R"("control":"reset","latencys":false)",
     "reset: latencys: unknown key; accepted: latencies; did you mean latencies?"},
    {R"("control":"clear","funktion":"ARC_Open")",
     "clear: funktion: unknown key; accepted: function; did you mean function?"},
    {R"("control":"latencies","of":true)", "latencies: of: unknown key; accepted: on"},
    {R"("control":"set","key":"Power/Cpu","valeu":"max")",
     "set: valeu: unknown key; accepted: key, value, force, quoted; did you mean value?"},
    {R"("control":"event","eventid":72)",
     "event: eventid: unknown key; accepted: eventId, payload, count, everyMs, numbered; did you mean eventId?"},
    {R"("control":"lsta","system":"gps","statsu":1)",
     "lsta: statsu: unknown key; accepted: system, status, value, auto; did you mean status?"},
    {R"("control":"no-fix","forms":1)", "no-fix: forms: unknown key; accepted: forMs, off; did you mean forMs?"},
    {R"("control":"jam","system":"all")",
     "jam: system: unknown key; accepted: systems, forMs, off; did you mean systems?"},
    {R"("control":"outage","formS":1)", "outage: formS: unknown key; accepted: forMs; did you mean forMs?"},
    {R"("control":"advance","Ms":1)", "advance: Ms: unknown key; accepted: ms; did you mean ms?"},
};

std::string errorOf(Served& served, const Row& row)
{
    Served::Connection& operating = served.greet();
    operating.say(std::string(R"({"id":1,)") + row.members + "}");
    served.settle();
    const std::vector<std::string> lines = operating.take();
    return lines.size() == 1 ? Json::parse(lines[0]).value("error", lines[0]) : std::to_string(lines.size()) + " lines";
}

TEST(AnUnknownKey, IsRefusedByEveryControlWithWhatIsAccepted)
{
    Served served;
    served.serve(modemService(served.context()));
    for (const Row& row : kRows)
        EXPECT_EQ(errorOf(served, row), row.error);
}

TEST(AnUnknownKey, IsRefusedByAReplayToo)
{
    Served served;
    served.serve(replayService(served.context(), record_test::RecordingText().call("ARC_Open").recording()));
    EXPECT_EQ(errorOf(served, kRows[2]), "stop: now: unknown key; accepted: none");
}

}  // namespace
