#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/ProgressSubject.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Imports packed libraries (".orvlibz") into the user's library. The database of an archive is placed among
/// the user's libraries under the archive's name. Its referenced files are merged into the texture archive
/// with that name. The former files are kept, so that `ImportUndo` can restore them. Example:
///
///     const ArchiveImport import(host.root(), {});
///     const ArchiveImport::Result result = import.run("/home/me/Kitchen.orvlibz", progress);
///     if (!result.error.empty())
///         show(result.source + ": " + result.error);
///
/// An import changes everything or nothing: after a failure or a cancel, the library and its textures are
/// unchanged. If the program is killed, a record of its steps remains, and the next import or undo on this
/// root completes the import or takes it back. Several programs may import into one root at the same time;
/// their changes are made one after the other.
///
/// One thread at a time may use an object. The functions run on the caller's thread.
class ORVHOST_EXPORT ArchiveImport
{
public:
    /// How to import an archive.
    struct Options
    {
        /// Whether it is a manufacturer's library. Its database is then placed among the manufacturer
        /// catalogs, and its referenced files among those of core content.
        bool isProprietary = false;
        /// Whether to refuse an archive whose database is not one: for example a web page with the name of a
        /// library.
        bool checksDatabase = true;
        /// Whether to keep a damaged texture archive of the library as "NAME.zip.damaged" (or ".damaged.2"
        /// and so on) and to merge its sound members. Otherwise the import fails.
        bool setsAside = false;
    };

    /// The result of importing one source, or of planning it.
    struct Result
    {
        std::string source;
        fileString library;       ///< the database in its place; empty if the archive has none
        fileString textures;      ///< the texture archive; empty if the archive has no other files
        bool replaces = false;    ///< whether a library with this name existed
        std::size_t added = 0;    ///< number of referenced files that are new in the texture archive
        std::size_t replaced = 0; ///< number of those that replace a file
        fileString setAside;      ///< where the damaged texture archive is kept; empty if there was none
        /// The damaged texture archive that stopped the import, so that a program can ask the user whether to
        /// set it aside. Empty for all other reasons.
        fileString damaged;
        bool isCancelled = false; ///< whether the user cancelled before the library was in place
        std::string error;        ///< what failed and why, or "cancelled"; empty after success
    };

    /// @param root the folder in which "former-imports" keeps the replaced files; `AppHost::root()`
    ArchiveImport(const fileString& root, const Options& options);

    /// Reads and checks everything like `run`, and returns what `run` would do. Changes nothing.
    /// @param source a path, or an http or https address
    /// @param progress must not be null
    Result plan(const std::string& source, const std::shared_ptr<ProgressSubject>& progress) const;
    /// Imports one archive. Labels show the steps: "downloading" for an address, "reading", "checking",
    /// "putting in place". The work is counted in bytes (`ProgressSubject::advanceBytes`). A cancel takes
    /// effect until the database is in place; then the import is done.
    /// @param source a path, or an http or https address
    /// @param progress must not be null
    Result run(const std::string& source, const std::shared_ptr<ProgressSubject>& progress) const;

private:
    fileString mRoot;
    Options mOptions;
};

} // namespace OrvHost
