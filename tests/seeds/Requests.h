#pragma once

// Every public operation that requests something, as the test asks for it and as the contract describes it.

#include "contract/CallTable.h"
#include "kelarc/KelArc.h"
#include "seeds/Random.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace seeds {

/// Values of a request that replaces a callback of events.
inline const std::string kListener = "a listener";
inline const std::string kNoListener = "no listener";

/// One call of an operation, with its arguments; those that the operation does not have are unused.
struct Request
{
    std::size_t operation = 0;
    int number = 0;
    bool flag = false;
    std::string text{};
    std::string value{};
};

/// What a task does with the outcome of its calls.
enum class Ending
{
    method,  ///< nothing
    open,
    close,
    registration,  ///< nothing
    code,
    arcVersion,
    rilVersion,
    atCommand,
    text,    ///< the setting as the modem gave it
    typed,   ///< the setting as one of its values
    power,   ///< the same for power saving, which looks at the reply whatever the code
    number,  ///< the setting as a number
    system,  ///< the setting of a satellite system
    written,
    systemWritten,
    rawStart,
    stop,
    lstaQuery,
    lstaSwitch,
};

/// A task that a request queues, by the published values of its kind.
struct Task
{
    const contract::PublishedCall* kind = nullptr;
    std::string call{};  ///< as log lines show it
    Ending ending{};
    std::string key{};
    std::string value{};  ///< in quotes, as it is written
    int number = 0;       ///< the satellite system
};

/// What the contract says of a request whose arguments are these.
struct Demand
{
    std::vector<Task> tasks{};
    std::optional<std::string> line{};    ///< logged at once, with its level
    std::optional<std::string> answer{};  ///< given at once
};

/// What a request calls back. A copy of it is in every callback, so what it holds tells when the last one has gone.
class Receipt
{
public:
    using Answered = std::function<void(const std::string&)>;
    explicit Receipt(std::shared_ptr<const Answered> answered) : m_answered(std::move(answered)) {}

    template <typename... Values>
    void operator()(Values&&... values) const
    {
        std::string text = "(";
        const char* separator = "";
        ((text += separator + support::describe(values), separator = ", "), ...);
        (*m_answered)(text + ")");
    }

private:
    std::shared_ptr<const Answered> m_answered;
};

/// The callbacks that receive events: who is called, and with what.
struct Listeners
{
    std::function<void(kelarc::NOTIFY_ID, void*, int)> notified{};
    std::function<void(kelarc::lsta::TYPE, int, double)> lstaChanged{};
};

struct Operation
{
    const char* name;
    std::vector<int> numbers{};  ///< to choose from; empty: it takes none
    bool takesFlag = false;
    std::vector<std::string> texts{};
    std::vector<std::string> values{};
    void (*ask)(kelarc::KelArc& kelarc, const Request& request, Receipt receipt, Listeners listeners) = nullptr;
    Demand (*demand)(const Request& request) = nullptr;
};

const std::vector<Operation>& operations();
/// By its name.
std::size_t operationNamed(const std::string& name);

Request drawRequest(Random& random, std::size_t operation);
std::string wordsOf(const Request& request);

/// What the modem keeps under a key and which values of a typed setting its texts are.
struct TypedSetting
{
    const char* key;
    unsigned unknownLine;  ///< in the log, for a reply that is not listed
    std::vector<std::pair<int, std::string>> texts;
};
const TypedSetting& typedSetting(const std::string& key);

}  // namespace seeds
