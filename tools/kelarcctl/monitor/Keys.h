#pragma once

#include "kelarcctl/monitor/Model.h"
#include "kelarcctl/monitor/View.h"

namespace kelarcctl {

struct Key
{
    enum Kind
    {
        character,
        up,
        down,
        left,
        right,
        enter,
        escape,
        tab,
        backTab,
        backspace,
        clear,
        home,
        end,
        pageUp,
        pageDown,
    };

    Kind kind = character;
    char value = '\0';  ///< of a character
};

/// An action requested by a key, beyond a change of the view.
struct Wish
{
    enum Kind
    {
        none,
        quit,
        start,
        stop,
        read,
        write,
    };

    Kind kind = none;
    std::size_t setting = 0;  ///< row of the model
    std::string value{};      ///< one of its accepted values
};

/// Changes the view according to the key. `roomy`: there is room for several panels at once.
Wish press(View& view, const Model& model, const Key& key, bool roomy);

}  // namespace kelarcctl
