#include "counts/Subjects.h"
#include "kelarc/KelArc.h"
#include "peers/Name.h"

#include <array>

namespace bench {
namespace {

using std::chrono::milliseconds;
using task::ExecutionReason;

class QueueSubject : public Subject
{
public:
    QueueSubject() { m_queue.start(); }
    ~QueueSubject() override { m_queue.stop(); }

    void addBody(std::function<void()> body) override
    {
        m_queue.addTask(
            "body", [body = std::move(body)](ExecutionReason) { body(); }, milliseconds(0));
    }
    void addCounted() override
    {
        m_queue.addTask(
            "counted", [this](ExecutionReason) { ++m_ran; }, milliseconds(0));
    }

protected:
    task::TaskQueue<128, task::TaskContainer>& queue() { return m_queue; }
    void count() { ++m_ran; }

private:
    unsigned m_ran = 0;
    task::TaskQueue<128, task::TaskContainer> m_queue{"Counted"};
};

class TaskSubject : public QueueSubject
{
public:
    void addCounted() override
    {
        queue().addTask(
            kTaskName, [this, captured = std::array<char, 40>{}](ExecutionReason) { countWith(captured); },
            milliseconds(0));
    }

private:
    void countWith(const std::array<char, 40>&) { count(); }
};

class RequestSubject : public Subject
{
public:
    RequestSubject()
    {
        m_modem.open([](int) {});
    }

    /// Runs `body` through another request, whose callback runs on the worker.
    void addBody(std::function<void()> body) override
    {
        m_modem.resetAGNSS([body = std::move(body)](int) { body(); });
    }
    void addCounted() override
    {
        m_modem.getMinElevation([this](int, unsigned char elevation) { m_sum += elevation; });
    }

private:
    unsigned m_sum = 0;
    kelarc::KelArc m_modem{[](int, const char*) {}};
};

}  // namespace

std::unique_ptr<Subject> makeQueue()
{
    return std::make_unique<QueueSubject>();
}

std::unique_ptr<Subject> makeTask()
{
    return std::make_unique<TaskSubject>();
}

std::unique_ptr<Subject> makeRequest()
{
    return std::make_unique<RequestSubject>();
}

}  // namespace bench
