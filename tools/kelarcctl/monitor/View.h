#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kelarcctl {

enum class Panel
{
    all,  ///< several at once, where there is room for them
    overview,
    signal,
    modem,
    tasks,
    events,
    help,
};

/// What the user looks at and is about to do.
struct View
{
    enum class Mode
    {
        watching,
        setting,  ///< one is being chosen
        value,    ///< a value for it
    };

    Panel panel = Panel::all;
    Mode mode = Mode::watching;
    bool isPaused = false;
    std::size_t setting = 0;           ///< row of the model
    std::vector<std::string> words{};  ///< the values to choose from; empty: a number is typed
    std::size_t word = 0;
    std::string typed{};
    bool replaces = false;    ///< the next digit begins anew, in place of what is there
    std::string complaint{};  ///< about what was typed
};

}  // namespace kelarcctl
