// The action of each step.

#include "seeds/Play.h"
#include "seeds/Reader.h"
#include "sim/client/ArcSim.h"

namespace seeds {
namespace {

using Kind = Step::Kind;
using Seen = Entry::Kind;

std::string member(const std::string& name, const std::string& text)
{
    return '"' + name + "\":\"" + text + '"';
}
std::string member(const std::string& name, int number)
{
    return '"' + name + "\":" + std::to_string(number);
}

}  // namespace

void Play::perform(const Step& step)
{
    if (step.kind == Kind::request) {
        request(step);
    } else if (step.kind == Kind::destroy) {
        destroy(step);
    } else if (m_daemon.isServing()) {
        settle();
        m_stage.note({Seen::step, false, wordsOf(step), 0, 0, &step});
        performOnModem(step);
        settle();
    }
}

void Play::performOnModem(const Step& step)
{
    switch (step.kind) {
    case Kind::kill:
        kill(step);
        break;
    case Kind::fault:
        m_daemon.control("fault", member("function", step.function) + "," + member("times", step.count) + "," +
                                      (step.fault.empty() ? member("code", step.number) : step.fault));
        break;
    case Kind::hang:
        m_daemon.control("fault", member("function", step.function) + R"(,"times":1,"hang":true)");
        m_hangs.push_back(&step);
        break;
    case Kind::clear:
        m_daemon.control("clear");
        m_hangs.clear();
        break;
    case Kind::outage:
        m_daemon.control("outage", member("forMs", step.number));
        m_isOutage = true;
        break;
    case Kind::reset:
        m_daemon.control("reset");
        m_hangs.clear();
        m_isOutage = false;
        break;
    case Kind::jam:
        m_daemon.control("jam", R"("systems":[")" + step.text + "\"]," + member("forMs", step.number));
        break;
    case Kind::noFix:
        m_daemon.control("no-fix", member("forMs", step.number));
        break;
    case Kind::set:
        m_daemon.control("set", member("key", step.text) + "," + member("value", step.value));
        break;
    case Kind::events:
        m_daemon.control("event", member("eventId", step.number) + "," + member("count", step.count + 1) +
                                      R"(,"numbered":true)");
        break;
    case Kind::lsta:
        m_daemon.control("lsta", member("system", step.text) + "," + member("status", step.number) + "," +
                                     member("value", step.count));
        break;
    case Kind::otherClient:
        otherClient(step.number);
        break;
    case Kind::read:
        read(step.count, false);
        break;
    case Kind::advance:
        pass(step.number);
        break;
    case Kind::rescue:
        m_daemon.control("clear");
        m_hangs.clear();
        ARC_Open();
        break;
    case Kind::request:
    case Kind::destroy:
        break;
    }
}

void Play::kill(const Step& step)
{
    if (step.flag)
        read(1, true);
    else
        m_daemon.kill();
    m_servedAfter = step.count;
    m_hangs.clear();
    m_isOutage = false;
}

void Play::serve()
{
    m_daemon.serve();
    m_stage.note({Seen::served});
    settle();
}

bool Play::isOutput()
{
    const arcsim::Json status = m_daemon.control("status");
    return status["engine"] != "off" && status["outage"] == false;
}

void Play::read(int epochs, bool isKilledMeanwhile)
{
    if (isOutput()) {
        Reader reader(m_daemon.output());
        reader.read(epochs, [this] { m_daemon.control("status"); });
        m_stage.note(
            {Seen::look, false,
             "heard " + std::to_string(reader.sentences()) + " sentences, " + std::to_string(reader.digest())});
        if (isKilledMeanwhile) {
            m_daemon.control("status");  // the events of the last epoch go first
            m_daemon.kill();
            reader.readRest();  // its last line may be cut, as a line without an end
        }
        if (!reader.torn().empty())
            m_outcome.problems.push_back("a torn sentence: " + reader.torn());
    } else if (isKilledMeanwhile) {
        m_daemon.kill();
    }
}

void Play::otherClient(int deed)
{
    if (m_daemon.control("status")["outage"] == true)
        return;
    const std::size_t before = m_daemon.control("status")["clients"].size();
    {
        const Conversation other(m_daemon.socketOfThisProcess());
        const std::string isOpen = deed == 1 || deed == 2 ? "true" : "false";
        other.say(R"({"hello":"client","name":"other","pid":1,"open":)" + isOpen + R"(,"handler":true})" + "\n");
        while (m_daemon.control("status")["clients"].size() == before)
            requireProgress();
        if (deed == 2)
            other.say(R"({"id":1,"call":"ARC_StartGNSSraw","args":{"text":"set","size":255},"thread":1})"
                      "\n");
        if (deed == 3)
            other.say(R"({"id":1,"call":"ARC_O)");
    }
    while (m_daemon.control("status")["clients"].size() != before)
        requireProgress();
}

void Play::pass(int ms)
{
    m_daemon.control("advance", member("ms", ms));
    m_stage.note({Seen::passed, false, "", ms});
    if (m_isOutage && m_daemon.control("status")["outage"] == false)
        m_isOutage = false;
    settle();
}

/// No event may meet an object that is being destroyed.
void Play::unlisten()
{
    arcsim::answerNext(arcsim::Function::RegisterNotification, {arcsim::Answer{}});
    ARC_RegisterNotification(nullptr);
    m_stage.note({Seen::unlisten});
    settle();
}

void Play::destroy(const Step& step)
{
    if (!m_stage.isMoment())
        hold();
    unlisten();
    m_stage.note({Seen::step, false, wordsOf(step), 0, 0, &step});
    m_destroyer = std::thread([this] {
        const Destroying destroying(m_stage);
        m_kelarc.reset();
        m_isDestroyed = true;
    });
    while (!m_stage.hasJoiner())
        m_stage.isMoment();
}

void Play::finishDestroying()
{
    m_destroyer.join();
    m_isDestroyed = false;
    m_stage.forgetJoiner();
    unlisten();
    m_stage.note({Seen::destroyed, true});
    make();
}

}  // namespace seeds
