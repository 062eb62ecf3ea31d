#pragma once

#include "kelarcctl/Session.h"

namespace kelarcctl {

/// Flushes the results. Returns `exitCode`; if writing failed, prints that on stderr and returns the code for it.
int endOutput(int exitCode);

/// Closes the modem and flushes results and log. If something fails here, prints that on stderr. Returns `exitCode`, or
/// the code of this failure if there was none before. Does not return when the modem cannot be closed: destroying the
/// library object would wait for a client library call that does not return.
int endRun(Session& session, const Log& log, int exitCode, const Output& output);

}  // namespace kelarcctl
