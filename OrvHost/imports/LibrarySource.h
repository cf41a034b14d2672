#pragma once

#include <memory>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/IO/LibraryImport.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Files that an operation made in the temporary folder; those that were not moved away by the end of the
/// object are removed.
struct UnpackedFiles
{
    explicit UnpackedFiles(LibraryImport::UnpackResult result);

    LibraryImport::UnpackResult found;

private:
    FileReaper mDatabaseGuard;
    FileReaper mReferencedGuard;
};

/// A packed library as the user names it: a local path or an address. Used by one thread.
class ORVHOST_EXPORT LibrarySource
{
public:
    explicit LibrarySource(const std::string& text);

    bool isAddress() const { return mIsAddress; }
    /// The name that the results get: the archive's name without folder and extension. For an address it is
    /// the name of the file that the address asks for.
    /// @throws std::runtime_error when that is no name
    fileString stem() const;
    /// Downloads what an address names, once, to the temporary folder, and tells the bytes. Does nothing for
    /// a path. A cancel is a failure.
    /// @throws std::runtime_error, naming the address and the reason
    void fetch(const std::shared_ptr<ProgressSubject>& progress);
    /// Unpacks to the temporary folder, after `fetch`. A cancel gives nothing.
    /// @throws std::runtime_error, naming the source and the reason
    std::unique_ptr<UnpackedFiles> unpack(const std::shared_ptr<ProgressSubject>& progress) const;
    /// Unpacks beside the archive, which is a local path.
    /// @throws std::runtime_error, naming the source and the reason
    LibraryImport::UnpackResult unpackBeside(const std::shared_ptr<ProgressSubject>& progress) const;

private:
    std::string nameInAddress() const;
    void requireFile() const;
    LibraryImport::UnpackResult unpackFile(const fileString& archive, bool temporary,
                                           const std::shared_ptr<ProgressSubject>& progress) const;

    fileString mText;
    std::string mUrl; ///< as the wire wants it
    bool mIsAddress;
    fileString mDownloaded; ///< the temporary file; empty until `fetch`
    std::unique_ptr<FileReaper> mDownloadGuard;
};

/// Moves a file over whatever file has that name.
/// @throws std::runtime_error
ORVHOST_EXPORT void moveOver(const fileString& from, const fileString& to);

/// The path from the root of the file system, without "." and "..".
ORVHOST_EXPORT fileString absolutePath(const fileString& path);

} // namespace OrvHost
