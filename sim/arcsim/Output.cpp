#include "arcsim/Output.h"

#include "arcsim/ExitCode.h"
#include "support/Printable.h"

#include <iostream>

namespace arcsim::program {

void sayError(const std::string& text)
{
    std::cerr << "arcsim: " + support::printable(text) + '\n';
}

int finishOutput(int exitCode)
{
    if (std::cout.flush())
        return exitCode;
    sayError("standard output could not be written");
    return kExitOutput;
}

}  // namespace arcsim::program
