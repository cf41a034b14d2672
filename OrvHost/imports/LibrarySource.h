#pragma once

#include <memory>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/IO/LibraryImport.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Files made in the temporary folder. The destructor removes those that were not moved away.
struct UnpackedFiles
{
    explicit UnpackedFiles(LibraryImport::UnpackResult result);

    LibraryImport::UnpackResult found;

private:
    FileReaper mDatabaseGuard;
    FileReaper mReferencedGuard;
};

/// A packed library, given as a local path or an address. Used by one thread.
class ORVHOST_EXPORT LibrarySource
{
public:
    explicit LibrarySource(const std::string& text);

    bool isAddress() const { return mIsAddress; }
    /// The name for the results: the archive's name without folder and extension. For an address, the name of
    /// the requested file.
    /// @throws std::runtime_error if there is no valid name
    fileString stem() const;
    /// Downloads an address to the temporary folder, once, and reports the bytes. Does nothing for a path. A
    /// cancel is a failure.
    /// @throws std::runtime_error with the address and the reason
    void fetch(const std::shared_ptr<ProgressSubject>& progress);
    /// Unpacks to the temporary folder. Call `fetch` first. Null after a cancel.
    /// @throws std::runtime_error with the source and the reason
    std::unique_ptr<UnpackedFiles> unpack(const std::shared_ptr<ProgressSubject>& progress) const;
    /// Unpacks beside the archive, which must be a local path.
    /// @throws std::runtime_error with the source and the reason
    LibraryImport::UnpackResult unpackBeside(const std::shared_ptr<ProgressSubject>& progress) const;

private:
    std::string nameInAddress() const;
    void requireFile() const;
    LibraryImport::UnpackResult unpackFile(const fileString& archive, bool temporary,
                                           const std::shared_ptr<ProgressSubject>& progress) const;

    fileString mText;
    std::string mUrl; ///< encoded for HTTP
    bool mIsAddress;
    fileString mDownloaded; ///< the temporary file; empty until `fetch`
    std::unique_ptr<FileReaper> mDownloadGuard;
};

/// Moves a file and replaces any file with the new name.
/// @throws std::runtime_error
ORVHOST_EXPORT void moveOver(const fileString& from, const fileString& to);

/// The absolute path without "." and "..".
ORVHOST_EXPORT fileString absolutePath(const fileString& path);

} // namespace OrvHost
