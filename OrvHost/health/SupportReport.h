#pragma once

#include <map>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/health/Doctor.h"

/// The facts that support needs about a library, as texts: versions, settings, the last lines of the error
/// log, the last runs, answers and checks, a listing of the folders, and what the doctor found. Secrets, the
/// user's names and home folder are taken out of all of them.
namespace OrvHost::SupportReport {

/// File name to content. Reads the root, and changes nothing; what is not there is left out.
ORVHOST_EXPORT std::map<std::string, std::string> files(const fileString& root,
                                                        const std::vector<Doctor::Step>& steps);

} // namespace OrvHost::SupportReport
