#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The parts of downloads that broke off, kept in a folder of their own until a later try, or a later run,
/// goes on with them. The folder is bounded: in time, by each file's own time, and in size, the oldest files
/// going first. Used by one thread at a time.
class ORVHOST_EXPORT PartialFiles
{
public:
    static constexpr const char* kExtension = ".part";
    static constexpr std::chrono::hours kLongestAge{7 * 24};
    static constexpr std::int64_t kMostBytes = 2'000'000'000;

    /// @param folder without a final separator; made when a file is first wanted
    explicit PartialFiles(const fileString& folder) : mFolder(folder) {}
    /// "partial" in the installed path service's temporary folder.
    static fileString defaultFolder();

    /// Where the body of an address, in one version, grows. Parts of other versions of it are removed.
    /// @return empty when the folder cannot be made
    fileString fileFor(const std::string& url, const std::string& validator) const;
    /// Removes what is too old or too much.
    void prune(std::int64_t mostBytes = kMostBytes) const;

private:
    fileString mFolder;
};

} // namespace OrvHost
