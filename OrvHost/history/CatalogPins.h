#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogPlace.h"

namespace OrvHost {

/// The catalogs that the user wants to keep at a version: those that are held, and those of which a former
/// version was restored. Stored in "catalog-pins.json" below the root; docs/formats/catalog-pins.md describes
/// the file. One object belongs to one thread.
class ORVHOST_EXPORT CatalogPins
{
public:
    /// A catalog that no update may replace.
    struct Held
    {
        std::string version; ///< the version in place
        std::string newer;   ///< a newer version in the history; empty if there is none
    };

    /// A former version that was restored.
    struct Restored
    {
        std::string version;
        std::string contents;         ///< SHA-1 of the file; the record is valid while this file is in place
        std::set<std::string> leaves; ///< the versions that the user left; updates do not bring them again
    };

    /// Reads the file. If it is missing, nothing is pinned.
    /// @throws std::runtime_error if the file exists and cannot be read or is not valid, because treating it
    /// as empty would lose the user's choices
    explicit CatalogPins(const fileString& root);

    bool isHeld(const CatalogPlace& place) const { return mHeld.count(place) != 0; }
    const std::map<CatalogPlace, Held>& held() const { return mHeld; }
    void hold(const CatalogPlace& place, const Held& held) { mHeld[place] = held; }
    void release(const CatalogPlace& place) { mHeld.erase(place); }
    /// The names of held catalogs for the user: the file name, or "core/Doors.orvlib" if two have the same
    /// file name.
    std::vector<std::string> heldNames() const;

    const std::map<CatalogPlace, Restored>& restored() const { return mRestored; }
    void setRestored(const CatalogPlace& place, const Restored& restored) { mRestored[place] = restored; }
    /// Removes records of restored versions that are no longer in place, because the file was replaced,
    /// removed or damaged. Changes only this object, not the file. Reads the catalogs completely.
    /// @return whether a record was removed
    bool forgetReplaced();
    /// Does the same, and restores missing hash lines of the versions that are still in place. Needs the lock
    /// of an update; call it before the update reads the hash files.
    /// @return whether a record was removed
    /// @throws std::runtime_error if a hash file cannot be written
    bool reconcile();

    /// @throws std::runtime_error with the path and the system's message; the file is then unchanged
    void save() const;
    /// Reads the pins, changes them and saves them. Prevents updates and other changes meanwhile.
    /// @throws std::runtime_error like the constructor and `save`, and if an update is running
    static void change(const fileString& root, const std::function<void(CatalogPins&)>& changeIt);

private:
    fileString mPath;
    std::map<CatalogPlace, Held> mHeld;
    std::map<CatalogPlace, Restored> mRestored;
};

} // namespace OrvHost
