#pragma once

#include "kelarc/async.h"
#include "support/Answer.h"

#include <chrono>
#include <future>
#include <string>
#include <tuple>

/// The outcome of a future as a text: "answer(0, true)", "dropped", "late", or "nothing" if it does not end within 30
/// s.
namespace outcome {

template <typename Value>
std::string textOf(const Value& value)
{
    return "answer(" + support::describe(value) + ")";
}

template <typename... Values>
std::string textOf(const std::tuple<Values...>& values)
{
    std::string text;
    std::apply([&](const auto&... each) { ((text += (text.empty() ? "" : ", ") + support::describe(each)), ...); },
               values);
    return "answer(" + text + ")";
}

/// Calls something that returns a value or throws how its request ended.
template <typename Get>
std::string of(Get&& get)
{
    try {
        return textOf(get());
    } catch (const kelarc::async::TimedOut&) {
        return "late";
    } catch (const std::future_error& error) {
        return error.code() == std::future_errc::broken_promise ? "dropped" : error.what();
    }
}

template <typename Value>
std::string of(std::future<Value> future)
{
    if (future.wait_for(std::chrono::seconds(30)) != std::future_status::ready)
        return "nothing";
    return of([&] { return future.get(); });
}

/// The same for one that must have ended already.
template <typename Value>
std::string now(std::future<Value> future)
{
    return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready ? of(std::move(future)) : "nothing";
}

template <typename Value>
bool hasEnded(const std::future<Value>& future)
{
    return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

}  // namespace outcome
