#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kelarcctl {

enum class Panel
{
    all,  ///< several panels at once, if there is room
    overview,
    signal,
    modem,
    tasks,
    events,
    help,
};

/// What the user is viewing and editing.
struct View
{
    enum class Mode
    {
        watching,
        setting,  ///< a setting is being chosen
        value,    ///< a value for the setting is being chosen
    };

    Panel panel = Panel::all;
    Mode mode = Mode::watching;
    bool isPaused = false;
    std::size_t setting = 0;           ///< row of the model
    std::vector<std::string> words{};  ///< the values to choose from; empty: a number is typed
    std::size_t word = 0;
    std::string typed{};
    bool replaces = false;    ///< the next digit replaces the present text
    std::string complaint{};  ///< the error in the typed text
};

}  // namespace kelarcctl
