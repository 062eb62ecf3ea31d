#pragma once

#include <functional>
#include <memory>

namespace bench {

/// One worker and what is handed to it.
class Subject
{
public:
    Subject() = default;
    virtual ~Subject() = default;
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    /// Hands over something that runs `body` on the worker.
    virtual void addBody(std::function<void()> body) = 0;
    /// Hands over one of the things that are counted.
    virtual void addCounted() = 0;
};

/// The queue alone: a name and a closure that fit into their objects.
std::unique_ptr<Subject> makeQueue();
/// A task as the library's are: a name of 59 characters and a closure of 48 bytes.
std::unique_ptr<Subject> makeTask();
/// A typed request with its result line, from call to callback.
std::unique_ptr<Subject> makeRequest();
/// What is used instead of the queue: asio with a pending steady_timer, the handler with that name and closure.
std::unique_ptr<Subject> makeAsio();

}  // namespace bench
