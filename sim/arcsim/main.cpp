// The program arcsim: the list of its families of commands, see Commands.h.

#include "arcsim/Commands.h"
#include "arcsim/ControlCommands.h"
#include "arcsim/RecordingCommands.h"
#include "arcsim/ServeCommands.h"
#include "arcsim/Texts.h"
#include "support/StandardDescriptors.h"

int main(int argc, char** argv)
{
    support::fillStandardDescriptors();
    return arcsim::program::runProgram(argc, argv,
                                       {arcsim::program::addServeCommands, arcsim::program::addControlCommands,
                                        arcsim::program::addRecordingCommands, arcsim::program::addTextCommands});
}
