#include "modem/Scenario.h"

#include <algorithm>

namespace arcsim::modem {

const Fault* findFault(const Scenario& scenario, std::size_t request, unsigned number, std::chrono::milliseconds now)
{
    const auto applies = [&](const Fault& fault) {
        if (fault.request != request)
            return false;
        if (fault.firstCall && (number < *fault.firstCall || number - *fault.firstCall >= fault.callCount))
            return false;
        return (!fault.from || now >= *fault.from) && (!fault.until || now < *fault.until);
    };
    const auto found = std::find_if(scenario.faults.begin(), scenario.faults.end(), applies);
    return found == scenario.faults.end() ? nullptr : &*found;
}

}  // namespace arcsim::modem
