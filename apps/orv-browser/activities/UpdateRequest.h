#pragma once

#include "OrvHost/Settings.h"
#include "OrvHost/update/CatalogUpdateRun.h"

/// The order for an update, or a check, as the settings have it.
namespace UpdateRequest {

OrvHost::CatalogUpdateRun::Request of(const OrvHost::Settings::Values& settings);

} // namespace UpdateRequest
