#pragma once

#include <map>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/health/Doctor.h"

/// Collects facts about a library for support, as texts: versions, settings, the end of the error log, the
/// last runs, answers and checks, a listing of the folders, and the doctor's findings. Secrets, the user's
/// names and the home folder are removed from all texts.
namespace OrvHost::SupportReport {

/// The texts by file name. Reads the root and changes nothing. Leaves out what does not exist.
ORVHOST_EXPORT std::map<std::string, std::string> files(const fileString& root,
                                                        const std::vector<Doctor::Step>& steps);

} // namespace OrvHost::SupportReport
