#pragma once

#include "kelarcctl/Session.h"

namespace kelarcctl {

/// Sees to it that the results have gone out. Returns `exitCode`, or the one for a failure of that, which stderr tells.
int endOutput(int exitCode);

/// Closes the modem and sees to it that results and log have gone out. Returns `exitCode`, or the one for what has gone
/// wrong here if nothing else had; stderr says what. Does not return when the modem cannot be closed: destroying the
/// library would wait for the client library, which does not come back.
int endRun(Session& session, const Log& log, int exitCode, const Output& output);

}  // namespace kelarcctl
