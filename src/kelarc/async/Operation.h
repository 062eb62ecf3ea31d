#pragma once

// Derives the arguments and the answer of an operation from its type. Part of kelarc/async.h.

#include "../KelArc.h"
#include "Ending.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

namespace kelarc::async::detail {

/// Owned by a request's callback alone: when the library has destroyed the last copy of the callback without calling
/// it, the request was dropped.
template <typename Kind>
class Ticket
{
public:
    explicit Ticket(std::shared_ptr<Kind> ending) : m_ending(std::move(ending)) {}
    Ticket(const Ticket&) = delete;
    Ticket& operator=(const Ticket&) = delete;
    ~Ticket() { m_ending->fail(Failure::dropped); }

    Kind& ending() const { return *m_ending; }

private:
    std::shared_ptr<Kind> m_ending;
};

/// One argument plain, several as a tuple.
template <typename... Results>
struct ValueOf
{
    using type = std::tuple<std::decay_t<Results>...>;
};
template <typename Result>
struct ValueOf<Result>
{
    using type = std::decay_t<Result>;
};

/// What the last parameter of an operation says about its answer.
template <typename Parameter>
struct CallbackOf
{
    static constexpr bool isCallback = false;
    using Value = int;
};
template <typename... Results>
struct CallbackOf<std::function<void(Results...)>&&>
{
    static constexpr bool isCallback = true;
    using Value = typename ValueOf<Results...>::type;

    template <typename Kind>
    static std::function<void(Results...)> make(std::shared_ptr<Kind> ending)
    {
        return [ticket = std::make_shared<Ticket<Kind>>(std::move(ending))](Results... results) {
            ticket->ending().answer(Value(std::forward<Results>(results)...));
        };
    }
};

/// An operation by its parameters; the last is the callback.
template <typename... Parameters>
struct OperationOf
{
    using Callback = CallbackOf<std::tuple_element_t<sizeof...(Parameters) - 1, std::tuple<Parameters...>>>;
    using Value = typename Callback::Value;

    template <std::size_t... Index>
    static std::tuple<std::decay_t<std::tuple_element_t<Index, std::tuple<Parameters...>>>...>
        argumentsOf(std::index_sequence<Index...>);
    /// The arguments before the callback, as values.
    using Arguments = decltype(argumentsOf(std::make_index_sequence<sizeof...(Parameters) - 1>()));

    static constexpr bool isLstaSwitch =
        (std::is_same_v<Parameters, std::function<void(lsta::TYPE, int, double)>&&> || ...);
    static constexpr bool isNotification =
        (std::is_same_v<Parameters, std::function<void(NOTIFY_ID, void*, int)>&&> || ...);

    /// Refuses, with a message, an operation that cannot be a future.
    template <std::size_t given>
    struct Checked : std::true_type
    {
        static_assert(!isNotification, "setNotificationCB() never answers, and its callback comes for every event: "
                                       "there is no one value for a future. Call it with a callback.");
        static_assert(!isLstaSwitch,
                      "setLstaGnssStatus() answers failures only, and its other callback comes for "
                      "every notification: a future would be broken by success. Call it with callbacks.");
        static_assert(Callback::isCallback, "this operation takes no callback, so there is nothing to wait for");
        static_assert(given + 1 == sizeof...(Parameters),
                      "give the operation's arguments in its order, all but the callback");
    };
};

}  // namespace kelarc::async::detail
