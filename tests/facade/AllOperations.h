#pragma once

#include "kelarc/KelArc.h"
#include "support/KelArcTest.h"

#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

/// Every operation that takes a callback, with arguments that it accepts.
struct Operation
{
    const char* name;
    /// Makes the request with a std::function that holds `callback`, handed over with std::move; answers whether the
    /// caller's std::function can still be called afterwards.
    std::function<bool(kelarc::KelArc&, support::Answer callback)> request;
    bool copiesCallback;
};

inline std::ostream& operator<<(std::ostream& out, const Operation& operation)
{
    return out << operation.name;
}

/// Operations that answer exactly once when they succeed.
const std::vector<Operation>& answeringOperations();

/// An operation that takes a callback last, with what comes before it.
template <typename... Results>
auto requestOf(void (kelarc::KelArc::*method)(std::function<void(Results...)>&&))
{
    return [method](kelarc::KelArc& kelarc, support::Answer callback) {
        std::function<void(Results...)> callers(std::move(callback));
        (kelarc.*method)(std::move(callers));
        return static_cast<bool>(callers);
    };
}

template <typename First, typename... Results, typename Given>
auto requestOf(void (kelarc::KelArc::*method)(First, std::function<void(Results...)>&&), Given first)
{
    return [method, first](kelarc::KelArc& kelarc, support::Answer callback) {
        std::function<void(Results...)> callers(std::move(callback));
        (kelarc.*method)(first, std::move(callers));
        return static_cast<bool>(callers);
    };
}

template <typename First, typename Second, typename... Results, typename GivenFirst, typename GivenSecond>
auto requestOf(void (kelarc::KelArc::*method)(First, Second, std::function<void(Results...)>&&), GivenFirst first,
               GivenSecond second)
{
    return [method, first, second](kelarc::KelArc& kelarc, support::Answer callback) {
        std::function<void(Results...)> callers(std::move(callback));
        (kelarc.*method)(first, second, std::move(callers));
        return static_cast<bool>(callers);
    };
}
