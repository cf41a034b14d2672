#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <QDateTime>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogPlace.h"

namespace OrvHost {

/// A version of a catalog that is kept in the history.
struct ORVHOST_EXPORT FormerVersion
{
    std::string version; ///< its tag; the SHA-1 of its contents when it had none
    std::int64_t bytes = 0;
    QDateTime replaced; ///< UTC: when it went into the history
    fileString file;
    fileString companion; ///< the archive of referenced files that came with it; empty when there is none
};

/// The former versions of catalogs and of archives of referenced files, in "history/" beside the folder of
/// the core catalogs. docs/formats/history.md describes the folder.
///
/// A file is kept as a hard link, so that it costs no space before its successor is there and its place is
/// never empty; where there are no hard links it is copied. A kept file with the contents of the file in its
/// place is no former version: nothing lists it, and `settle` removes it. So a program may die after `keep`
/// without harm.
///
/// One object belongs to one thread. Functions that change the history are called under the lock of an update
/// (`HostLock::ofUpdate`).
class ORVHOST_EXPORT CatalogHistory
{
public:
    /// How much is kept. The newest former version of each catalog is kept whatever its size.
    struct Bounds
    {
        int versions = 3;                           ///< of each catalog; at least 1 is kept
        std::int64_t bytes = std::int64_t{2} << 30; ///< of all catalogs together
    };

    CatalogHistory() : CatalogHistory(Bounds()) {}
    explicit CatalogHistory(const Bounds& bounds) : mBounds(bounds) {}

    /// Keeps what is in a place, which is about to be replaced, with its tag in the hash file. With a bonus
    /// or manufacturer catalog the archive of referenced files is kept that was there when the archive of the
    /// same name was last kept; the place of the archive may already hold a newer file.
    /// @return false when it could not be kept, with the reason in `reason`; true also when the place is
    /// empty
    bool keep(const CatalogPlace& place, std::string& reason);
    /// The same for a file whose tag the caller knows; an empty one stands for the SHA-1 of the contents. So
    /// does a tag that a former version has already: then the hash file was not written when that was
    /// replaced.
    bool keep(const CatalogPlace& place, const std::string& tag, std::string& reason);
    /// Moves a file that never was in the place into the history, as its newest version.
    /// @param companion the archive of referenced files that came with it; may be empty
    bool add(const CatalogPlace& place, const std::string& tag, const fileString& file,
             const fileString& companion, std::string& reason);

    /// Reads the hash files: `keep` goes by their tags from then on, because an update writes these files
    /// before the host hears of every new catalog. Otherwise each is read when it is first needed.
    void noteTags();
    /// The tag of a place as the hash file had it then; empty for none.
    std::string tagOf(const CatalogPlace& place);

    /// The file that was kept last of a place; empty for none. Reads no contents.
    fileString newest(const CatalogPlace& place) const;
    /// The tag of that file; empty when it had none.
    std::string newestTag(const CatalogPlace& place) const;
    /// The former versions of a place, newest first. Reads those without a tag to their end.
    std::vector<FormerVersion> versions(const CatalogPlace& place) const;
    /// The places that have a folder in the history, whether a file is in them or not.
    std::vector<CatalogPlace> places() const;
    /// These and the places where a file is: what a user can name.
    std::vector<CatalogPlace> knownPlaces() const;

    /// Removes what is no former version: what has the contents of the file in its place, and what a dead
    /// process left; then the oldest versions until the bounds hold.
    void settle() const;

    /// Whether two files hold the same bytes; false when one cannot be read. Reads both when they are equally
    /// long, until the first difference.
    static bool hasSameContents(const fileString& left, const fileString& right);

    /// Where the history is, without the final separator.
    static fileString folder();
    static fileString folderOf(const CatalogPlace& place);

private:
    void settle(const CatalogPlace& place) const;
    void removeOldest() const;

    Bounds mBounds;
    std::map<std::string, std::map<std::string, std::string>> mTags; ///< by folder: what its hash file says
};

} // namespace OrvHost
