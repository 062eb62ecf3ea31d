// Reads the scenario files named on the command line and tells of each whether it is accepted: "accepted", or the
// error. Exit code 1 when one is not.

#include "scenario/FileText.h"
#include "scenario/ScenarioFile.h"

#include <cstdio>

int main(int count, char** arguments)
{
    int refused = 0;
    for (int i = 1; i < count; ++i) {
        try {
            arcsim::parseScenario(arguments[i], arcsim::contentOf(arguments[i], "the name of a scenario file"));
            std::puts("accepted");
        } catch (const arcsim::ScenarioError& error) {
            std::puts(error.what());
            refused = 1;
        }
    }
    return refused;
}
