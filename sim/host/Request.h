#pragma once

#include "modem/Function.h"

#include <string>
#include <string_view>
#include <vector>

namespace arcsim {

/// One argument of a call: its value, or, for an output or a handler, whether the pointer was set.
struct Argument
{
    enum class Kind
    {
        number,
        flag,
        text,     ///< `set` is false for a null pointer
        pointer,  ///< an output buffer or a handler
    };

    static Argument of(int value) { return {Kind::number, value, true, {}}; }
    static Argument of(bool value) { return {Kind::flag, value ? 1 : 0, true, {}}; }
    static Argument of(const char* text) { return {Kind::text, 0, text != nullptr, text == nullptr ? "" : text}; }
    static Argument pointer(bool isSet) { return {Kind::pointer, 0, isSet, {}}; }

    bool isTrue() const { return number != 0; }
    /// Numbers in decimal, flags 0 or 1, texts as they are, pointers "set", null pointers "null".
    std::string shown() const;

    Kind kind = Kind::number;
    int number = 0;
    bool set = false;
    std::string text{};
};

/// One call of the client library. The arguments have the order and kinds of the declaration.
struct Request
{
    Function function{};
    std::vector<Argument> arguments{};
};

struct Parameter
{
    std::string_view name;  ///< as declared in arc/ArcRilD.h
    Argument::Kind kind;
};

const std::vector<Parameter>& parametersOf(Function function);

}  // namespace arcsim
