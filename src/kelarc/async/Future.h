#pragma once

// Requests as futures. Part of kelarc/async.h.

#include "../KelArc.h"
#include "Clock.h"
#include "Ending.h"
#include "Operation.h"

#include <future>
#include <memory>
#include <utility>

namespace kelarc::async::detail {

/// Ends by setting a future.
template <typename Value>
class FutureEnding : public Ending
{
public:
    std::future<Value> future() { return m_promise.get_future(); }

    void answer(Value&& value)
    {
        if (isFirst())
            m_promise.set_value(std::move(value));
    }

private:
    void tellFailure(Failure failure) override { m_promise.set_exception(exceptionOf(failure)); }

    std::promise<Value> m_promise;
};

template <typename... Parameters, typename... Arguments>
auto requestWithin(const Limit* limit, KelArc& modem, void (KelArc::*operation)(Parameters...),
                   Arguments&&... arguments)
{
    using Operation = OperationOf<Parameters...>;
    using Value = typename Operation::Value;
    static_assert(Operation::template Checked<sizeof...(Arguments)>::value);
    const auto ending = std::make_shared<FutureEnding<Value>>();
    std::future<Value> future = ending->future();
    if (limit != nullptr)
        ending->limit(limit->clock, limit->duration);
    (modem.*operation)(std::forward<Arguments>(arguments)..., Operation::Callback::make(ending));
    return future;
}

}  // namespace kelarc::async::detail
