#pragma once

#include "OrvHost/update/CatalogUpdateRun.h"
#include "apps/orv-library/update/UpdateHost.h"

/// The event loop of a command that runs an update or a check.
namespace RunLoop {

/// Starts the run and returns when the worker has ended and all its calls have been delivered. A signal
/// cancels the run.
void run(OrvHost::CatalogUpdateRun& update, UpdateHost& host);

} // namespace RunLoop
