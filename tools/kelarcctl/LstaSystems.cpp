#include "kelarcctl/LstaSystems.h"

#include "support/Words.h"

namespace kelarcctl {

std::string wordOf(const kelarc::lsta::System& system)
{
    return support::inSmallLetters(system.name);
}

}  // namespace kelarcctl
