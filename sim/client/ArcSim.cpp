#include "client/ArcSim.h"

#include "client/Simulator.h"

#include <algorithm>

namespace arcsim {

namespace {

Simulator& simulator()
{
    return Simulator::instance();
}

}  // namespace

void reset()
{
    simulator().reset();
}

void setRealisticLatency(bool on)
{
    simulator().channel().setRealisticLatency(on);
}

void answerCall(Function function, unsigned number, Answer answer)
{
    simulator().book().answerCall(function, number, std::move(answer));
}

void answerNext(Function function, std::vector<Answer> answers)
{
    simulator().book().answerNext(function, std::move(answers));
}

void answerAlways(Function function, Answer answer)
{
    simulator().book().answerAlways(function, std::move(answer));
}

void clearAnswers(Function function)
{
    simulator().book().clearAnswers(function);
}

std::vector<Call> calls()
{
    return simulator().book().calls();
}

std::vector<Call> calls(Function function)
{
    std::vector<Call> found = calls();
    found.erase(std::remove_if(found.begin(), found.end(), [&](const Call& call) { return call.function != function; }),
                found.end());
    return found;
}

bool waitForCalls(Function function, unsigned count, std::chrono::milliseconds limit)
{
    return simulator().book().waitForCalls(function, count, limit);
}

bool deliverEvent(int id, void* data, int length)
{
    return simulator().notifier().deliver(id, data, length);
}

void queueEvent(int id, std::vector<unsigned char> payload)
{
    simulator().notifier().queue({id, std::move(payload)});
}

std::thread::id notificationThread()
{
    return simulator().notifier().threadId();
}

std::string setting(const std::string& key)
{
    return simulator().channel().setting(key);
}

void setSetting(const std::string& key, const std::string& quotedValue)
{
    simulator().channel().forceSetting(key, quotedValue);
}

Engine engine()
{
    return simulator().channel().engine();
}

bool isOpen()
{
    return simulator().channel().isOpen();
}

}  // namespace arcsim
