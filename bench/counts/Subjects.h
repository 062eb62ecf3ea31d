#pragma once

#include <functional>
#include <memory>

namespace bench {

/// One worker, with functions that hand work to it.
class Subject
{
public:
    Subject() = default;
    virtual ~Subject() = default;
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    /// Hands over work that runs `body` on the worker.
    virtual void addBody(std::function<void()> body) = 0;
    /// Hands over one of the things that are counted.
    virtual void addCounted() = 0;
};

/// The queue alone, with a name and a closure that need no allocation.
std::unique_ptr<Subject> makeQueue();
/// A task like the library's own: a name of 59 characters and a closure of 48 bytes.
std::unique_ptr<Subject> makeTask();
/// A typed request with its result line, from call to callback.
std::unique_ptr<Subject> makeRequest();
/// The alternative to the queue: asio with a pending steady_timer, whose handler has that name and closure.
std::unique_ptr<Subject> makeAsio();

}  // namespace bench
