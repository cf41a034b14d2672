#pragma once

#include <memory>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/ProgressSubject.h"
#include "OrvLibrary/host/fileString.h"

/// Takes a packed library into the user's: its database goes to the user's libraries (a proprietary one to
/// the manufacturer catalogs) under the archive's stem, its referenced files are merged into the library's
/// texture archive.
namespace OrvHost::ArchiveImport {

/// Where the parts of the library are now; empty for what the archive did not hold, what could not be put
/// there, and after a cancel.
struct Result
{
    fileString library;
    fileString textures;
};

/// Runs on the caller's thread. The referenced files are there before the library is. A library that is there
/// already is replaced in one step, and its former file stays as "NAME.orvlib.bak".
/// @param source a path, or an http or https address
/// @param progress must not be null
/// @param result filled in as the parts come to their places, also when the function throws
/// @throws std::runtime_error with what failed and why; the library is then as it was
ORVHOST_EXPORT void run(const std::string& source, bool isProprietary,
                        const std::shared_ptr<ProgressSubject>& progress, Result& result);

} // namespace OrvHost::ArchiveImport
