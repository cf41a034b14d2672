#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/ProgressSubject.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Takes packed libraries (".orvlibz") into the user's library. The database of an archive goes to the user's
/// libraries under the archive's name, and its referenced files are merged into the texture archive of that
/// name. The former files are kept, so that `ImportUndo` can bring it back. For example:
///
///     const ArchiveImport import(host.root(), {});
///     const ArchiveImport::Result result = import.run("/home/me/Kitchen.orvlibz", progress);
///     if (!result.error.empty())
///         show(result.source + ": " + result.error);
///
/// An import changes everything or nothing: after a failure or a cancel the library and its textures are as
/// before. A program that is killed in between leaves a record of what it did; the next import or undo on
/// that root completes or takes back the rest. Several programs may import on one root at once; they change
/// the library one after the other.
///
/// An object may be used by one thread at a time. The functions run on the caller's thread.
class ORVHOST_EXPORT ArchiveImport
{
public:
    /// How an archive is imported.
    struct Options
    {
        /// A manufacturer's library: the database goes to the manufacturer catalogs, the referenced files to
        /// the referenced files of core content.
        bool isProprietary = false;
        /// Refuses an archive whose database is none, such as a web page with the name of a library.
        bool checksDatabase = true;
        /// Where the texture archive that is there is damaged: keeps it as "NAME.zip.damaged" (or
        /// ".damaged.2" and so on) and merges with its sound members. Otherwise such an import fails.
        bool setsAside = false;
    };

    /// The result of one source, real or foreseen.
    struct Result
    {
        std::string source;
        fileString library;       ///< the database in its place; empty when the archive holds none
        fileString textures;      ///< the texture archive; empty when the archive holds no other files
        bool replaces = false;    ///< a library of that name was there before
        std::size_t added = 0;    ///< referenced files whose names the texture archive did not have
        std::size_t replaced = 0; ///< and those whose names it had
        fileString setAside; ///< where the damaged texture archive is kept; empty when it was not damaged
        /// The texture archive whose damage stopped the import, so that the user can be asked whether to set
        /// it aside; empty for any other reason.
        fileString damaged;
        bool isCancelled = false; ///< the user cancelled before the library was in its place
        std::string error;        ///< what failed and why, or "cancelled"; empty when all went well
    };

    /// @param root the folder that holds what earlier imports replaced, in "former-imports";
    /// `AppHost::root()`
    ArchiveImport(const fileString& root, const Options& options);

    /// Reads and checks everything as `run` does, and says what `run` would do. Changes nothing.
    /// @param source a path, or an http or https address
    /// @param progress must not be null
    Result plan(const std::string& source, const std::shared_ptr<ProgressSubject>& progress) const;
    /// Imports one archive. The steps are told as labels: "downloading" for an address, "reading",
    /// "checking", "putting in place". The amount of work is told in bytes (`ProgressSubject::advanceBytes`).
    /// A cancel is heard until the database has come to its place; after that the import is done.
    /// @param source a path, or an http or https address
    /// @param progress must not be null
    Result run(const std::string& source, const std::shared_ptr<ProgressSubject>& progress) const;

private:
    fileString mRoot;
    Options mOptions;
};

} // namespace OrvHost
