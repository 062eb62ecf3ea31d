#pragma once

#include "kelarc/names.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace kelarc {

struct CallPolicy;

/// The source path in task names and log prefixes, whichever file the code is in.
inline constexpr const char* kSource = "kelarc/KelArc";

// The result codes that the library itself answers.
constexpr int kSuccess = result::SUCCESS;
constexpr int kRefusedArgument = result::MISSING_PARAMETER;  ///< WRONG_PARAMETER would fit better: published
constexpr int kNotAttempted = result::GENERIC_ERROR;

/// How a task's calls ended.
enum class CallEnd
{
    success,
    refused,    ///< no attempt: the object was inactive
    cancelled,  ///< after a failure: the object was inactive
    gaveUp,     ///< the budget was used up
};

struct CallResult
{
    int code;  ///< of the last attempt, or 32
    CallEnd end;
};

/// One attempt at an ARC_* call: a reference to a callable that returns a result code. The callable must outlive it.
class Attempt
{
public:
    template <typename Callable>
    Attempt(const Callable& callable)
        : m_callable(&callable), m_invoke([](const void* target) { return (*static_cast<const Callable*>(target))(); })
    {
    }

    int operator()() const { return m_invoke(m_callable); }

private:
    const void* m_callable;
    int (*m_invoke)(const void*);
};

/// The name of a task. For operations with a visible effect before they queue: they allocate before that effect.
std::string taskName(const CallPolicy& policy, std::initializer_list<std::string_view> callText);

}  // namespace kelarc
