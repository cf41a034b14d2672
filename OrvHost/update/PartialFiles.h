#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The folder with interrupted downloads, which a later try or a later run continues. Files that are too old
/// are removed; if the folder is too large, the oldest files go first. Used by one thread at a time.
class ORVHOST_EXPORT PartialFiles
{
public:
    static constexpr const char* kExtension = ".part";
    static constexpr std::chrono::hours kLongestAge{7 * 24};
    static constexpr std::int64_t kMostBytes = 2'000'000'000;

    /// @param folder without a separator at the end; created when it is needed
    explicit PartialFiles(const fileString& folder) : mFolder(folder) {}
    /// "partial" in the temporary folder of the installed path service.
    static fileString defaultFolder();

    /// The file for one version of an address. Files for other versions of it are removed.
    /// @return empty if the folder cannot be created
    fileString fileFor(const std::string& url, const std::string& validator) const;
    /// Removes files that are too old, then the oldest until the size fits.
    void prune(std::int64_t mostBytes = kMostBytes) const;

private:
    fileString mFolder;
};

} // namespace OrvHost
