#pragma once

#include "arcsim/ExitCode.h"
#include "arcsim/Output.h"

#include <stdexcept>

namespace arcsim::program {

/// Runs a command's action; when that fails, prints a message and returns kExitRefused.
template <typename Action>
int guarded(const Action& action)
{
    try {
        return action();
    } catch (const std::runtime_error& error) {
        sayError(error.what());
    } catch (const std::invalid_argument& error) {
        sayError(error.what());
    }
    return kExitRefused;
}

}  // namespace arcsim::program
