#include "scenario/FileText.h"

#include "scenario/JsonText.h"
#include "scenario/ScenarioError.h"
#include "support/Files.h"

namespace arcsim {

std::string contentOf(const std::string& file, const std::string& accepted)
{
    try {
        return support::readFile(file, {kLargestFile, accepted});
    } catch (const support::FileError& error) {
        throw ScenarioError(error.what());
    }
}

}  // namespace arcsim
