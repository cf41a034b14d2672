#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <QDateTime>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogPlace.h"

namespace OrvHost {

/// A version of a catalog in the history.
struct ORVHOST_EXPORT FormerVersion
{
    std::string version; ///< its tag; if it had none, the SHA-1 of its content
    std::int64_t bytes = 0;
    QDateTime replaced; ///< UTC: when it was moved to the history
    fileString file;
    fileString companion; ///< the archive of referenced files that came with it; empty if there is none
};

/// Keeps former versions of catalogs and of archives of referenced files, in "history/" beside the folder of
/// the core catalogs. docs/formats/history.md describes the folder.
///
/// A file is kept as a hard link. This needs no space as long as the file is in its place, and the place is
/// never empty. Without hard links, the file is copied. If the kept file has the same content as the file in
/// place, it is not a former version: it is not listed, and `settle` removes it. So it does no harm if a
/// program is killed after `keep`.
///
/// One object belongs to one thread. Functions that change the history need the lock of an update
/// (`HostLock::ofUpdate`).
class ORVHOST_EXPORT CatalogHistory
{
public:
    /// How much to keep. The newest former version of each catalog is always kept.
    struct Bounds
    {
        int versions = 3;                           ///< of each catalog, at least 1
        std::int64_t bytes = std::int64_t{2} << 30; ///< size of all versions together
    };

    CatalogHistory() : CatalogHistory(Bounds()) {}
    explicit CatalogHistory(const Bounds& bounds) : mBounds(bounds) {}

    /// Keeps the current file of a place, which will be replaced, with its tag from the hash file. For a
    /// bonus or manufacturer catalog, this includes the archive of referenced files that was current when an
    /// archive of this name was last kept, because a newer archive may already be in place.
    /// @return false with `reason` if the file could not be kept; true also if there is no file
    bool keep(const CatalogPlace& place, std::string& reason);
    /// The same with a given tag. If the tag is empty, the SHA-1 of the content is used. The SHA-1 is also
    /// used if a former version already has the tag, because then the tag in the hash file was out of date.
    bool keep(const CatalogPlace& place, const std::string& tag, std::string& reason);
    /// Moves a file that never was in place into the history, as the newest version.
    /// @param companion the archive of referenced files that came with it; may be empty
    bool add(const CatalogPlace& place, const std::string& tag, const fileString& file,
             const fileString& companion, std::string& reason);

    /// Reads the hash files now, and uses these tags in `keep`. Needed before an update, because it writes
    /// the hash files before the host has received all catalogs. Without this call, each hash file is read
    /// when it is first needed.
    void noteTags();
    /// The tag of a place in these hash files; empty if there is none.
    std::string tagOf(const CatalogPlace& place);

    /// The file of a place that was kept last; empty if there is none. Does not read the file.
    fileString newest(const CatalogPlace& place) const;
    /// The tag of this file; empty if it had none.
    std::string newestTag(const CatalogPlace& place) const;
    /// The former versions of a place, newest first. Files without a tag are read completely.
    std::vector<FormerVersion> versions(const CatalogPlace& place) const;
    /// The places with a folder in the history, even an empty one.
    std::vector<CatalogPlace> places() const;
    /// These places and all places with a file: everything a user can name.
    std::vector<CatalogPlace> knownPlaces() const;

    /// Removes files that have the same content as the file in place, leftovers of killed processes, and then
    /// the oldest versions until the bounds are kept.
    void settle() const;

    /// Whether two files have the same content; false if one cannot be read. If they have the same length,
    /// reads both up to the first difference.
    static bool hasSameContents(const fileString& left, const fileString& right);

    /// The folder of the history, without a separator at the end.
    static fileString folder();
    static fileString folderOf(const CatalogPlace& place);

private:
    void settle(const CatalogPlace& place) const;
    void removeOldest() const;

    Bounds mBounds;
    std::map<std::string, std::map<std::string, std::string>> mTags; ///< hash files by folder
};

} // namespace OrvHost
