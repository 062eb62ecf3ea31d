#include "support/KelArcTest.h"

#include "kelarc/idle.h"

#include <chrono>
#include <utility>

namespace support {
namespace {

constexpr Function kFunctions[] = {
    Function::SetNotificationMethod,
    Function::Open,
    Function::Close,
    Function::RegisterNotification,
    Function::GetArcVersion,
    Function::GetRilVersion,
    Function::EnableLogging,
    Function::AtcTunneling,
    Function::CheckModuleSetting,
    Function::StartGNSSraw,
    Function::StopGNSS,
    Function::ForceStopGNSS,
    Function::ResetAGNSS,
    Function::CurrentLSTA,
    Function::EnableLSTA,
};

std::string pauseText(const pauses::Pause& pause)
{
    return "pause " + std::to_string(pause.seconds) + " s " + std::to_string(pause.nanoseconds) + " ns";
}

}  // namespace

KelArcTest::KelArcTest()
{
    restart();
}

KelArcTest::~KelArcTest()
{
    destroy();
    arcsim::reset();
    pauses::reset();
}

void KelArcTest::restart()
{
    destroy();
    arcsim::reset();
    forget();
    m_kelarc = std::make_unique<kelarc::KelArc>(journal.logCallback());
}

void KelArcTest::destroy()
{
    observePauses({});  // a test's observer may refer to the test's own variables
    // A call that is repeated until success must succeed now, and no event may reach a destroyed object.
    arcsim::reset();
    for (const Function function : kFunctions)
        arcsim::answerAlways(function, {});
    m_kelarc.reset();
}

void KelArcTest::forget()
{
    observePauses({});
    journal.clear();
}

void KelArcTest::observePauses(std::function<void(std::size_t)> action)
{
    pauses::reset();
    pauses::observe([this, action = std::move(action)](const pauses::Pause& pause, std::size_t number) {
        journal.add(Kind::pause, pauseText(pause));
        if (action)
            action(number);
    });
}

void KelArcTest::open()
{
    const std::size_t before = journal.count(Kind::answer);
    kelarc().open(answer("open"));
    ASSERT_TRUE(journal.waitFor(Kind::answer, before + 1)) << "open was not answered";
    settle();
    ASSERT_TRUE(kelarc().isOpen());
    forget();
}

void KelArcTest::close()
{
    const std::size_t before = journal.count(Kind::answer);
    kelarc().close(answer("close"));
    ASSERT_TRUE(journal.waitFor(Kind::answer, before + 1)) << "close was not answered";
    settle();
    forget();
}

void KelArcTest::settle()
{
    ASSERT_TRUE(kelarc::waitUntilIdle(kelarc(), std::chrono::seconds(30)))
        << "still busy with " << kelarc().getRunningTaskName();
}

void KelArcTest::activateWhileClosed()
{
    arcsim::answerNext(Function::StopGNSS, {success()});
    kelarc().stopGNSS([](int) {});
    settle();
    forget();
}

Gate KelArcTest::holdWorker()
{
    Gate gate;
    arcsim::Answer held;
    held.during = gate.holder();
    arcsim::answerNext(Function::ResetAGNSS, {held});
    kelarc().resetAGNSS([](int) {});
    EXPECT_TRUE(gate.waitUntilEntered());
    return gate;
}

void KelArcTest::script(Function function, const std::vector<int>& codes)
{
    std::vector<arcsim::Answer> answers;
    for (const int code : codes) {
        arcsim::Answer answer = success();
        answer.code = code;
        answers.push_back(std::move(answer));
    }
    arcsim::answerNext(function, std::move(answers));
    arcsim::answerAlways(function, success());
}

void KelArcTest::failTimes(Function function, unsigned count, int code)
{
    script(function, std::vector<int>(count, code));
}

void KelArcTest::duringPause(std::size_t number, std::function<void()> action)
{
    observePauses([number, action = std::move(action)](std::size_t current) {
        if (current == number)
            action();
    });
}

std::thread::id KelArcTest::workerThread()
{
    const std::vector<arcsim::Call> calls = arcsim::calls();
    return calls.empty() ? std::thread::id() : calls.front().thread;
}

Strings KelArcTest::lastArguments(Function function)
{
    const std::vector<arcsim::Call> calls = arcsim::calls(function);
    return calls.empty() ? Strings() : calls.back().arguments;
}

arcsim::Answer success()
{
    arcsim::Answer answer;
    answer.record = lstaInfo(1002, 0, 0);
    return answer;
}

LstaInfo lstaInfo(int indicator, int status, double value)
{
    LstaInfo info{};
    info.indicator = indicator;
    info.status = status;
    info.value = value;
    return info;
}

arcsim::Answer reply(const std::string& text, int code)
{
    arcsim::Answer answer;
    answer.code = code;
    answer.text = text;
    return answer;
}

}  // namespace support
