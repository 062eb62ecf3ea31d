#pragma once

#include "kelarcctl/Output.h"
#include "kelarcctl/monitor/Model.h"

namespace kelarcctl {

/// The line of an epoch; what the receiver did not say is null.
Json epochJson(const nmea::Epoch& epoch, const Model& model);

}  // namespace kelarcctl
