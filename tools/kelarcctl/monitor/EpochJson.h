#pragma once

#include "kelarcctl/Output.h"
#include "kelarcctl/monitor/Model.h"

namespace kelarcctl {

/// The JSON line of an epoch; values that the receiver did not send are null.
Json epochJson(const nmea::Epoch& epoch, const Model& model);

}  // namespace kelarcctl
