#include "arcsim/Output.h"

#include "arcsim/ExitCode.h"

#include <iostream>

namespace arcsim::program {

void sayError(const std::string& text)
{
    std::cerr << "arcsim: " + text + '\n';
}

int finishOutput(int exitCode)
{
    if (std::cout.flush())
        return exitCode;
    sayError("standard output could not be written");
    return kExitOutput;
}

}  // namespace arcsim::program
