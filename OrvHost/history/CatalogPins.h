#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogPlace.h"

namespace OrvHost {

/// The catalogs that the user wants kept at a version: held ones, and former versions that were put back.
/// It is kept in "catalog-pins.json" below the root; docs/formats/catalog-pins.md describes the file. One
/// object belongs to one thread.
class ORVHOST_EXPORT CatalogPins
{
public:
    /// A catalog that no update replaces.
    struct Held
    {
        std::string version; ///< the one in its place
        std::string newer;   ///< one that waits in the history; empty for none
    };

    /// A former version that was put back.
    struct Restored
    {
        std::string version;
        std::string contents;         ///< SHA-1 of the file; while it is in its place, the record counts
        std::set<std::string> leaves; ///< versions that the user went back from, which no update brings again
    };

    /// Reads the file; a missing one pins nothing.
    /// @throws std::runtime_error when it is there and cannot be read or understood: nobody may take it that
    /// nothing is pinned then
    explicit CatalogPins(const fileString& root);

    bool isHeld(const CatalogPlace& place) const { return mHeld.count(place) != 0; }
    const std::map<CatalogPlace, Held>& held() const { return mHeld; }
    void hold(const CatalogPlace& place, const Held& held) { mHeld[place] = held; }
    void release(const CatalogPlace& place) { mHeld.erase(place); }
    /// How a user names what is held: by the file name, or "core/Doors.orvlib" where two are called alike.
    std::vector<std::string> heldNames() const;

    const std::map<CatalogPlace, Restored>& restored() const { return mRestored; }
    void setRestored(const CatalogPlace& place, const Restored& restored) { mRestored[place] = restored; }
    /// Forgets what was put back and is not in its place any more: it was replaced, removed or damaged.
    /// Changes this object only; nothing is written. Reads the catalogs to their end.
    /// @return whether something was forgotten
    bool forgetReplaced();
    /// Does that, and writes the missing hash lines of what is still in its place. To be called under the
    /// lock of an update, before it reads the hash files.
    /// @return whether something was forgotten
    /// @throws std::runtime_error when a hash file cannot be written
    bool reconcile();

    /// @throws std::runtime_error with the path and the system's text; the file is then as it was
    void save() const;
    /// Reads the pins, changes them and saves them, while no update and no other change goes on.
    /// @throws std::runtime_error as above, and when an update is running
    static void change(const fileString& root, const std::function<void(CatalogPins&)>& changeIt);

private:
    fileString mPath;
    std::map<CatalogPlace, Held> mHeld;
    std::map<CatalogPlace, Restored> mRestored;
};

} // namespace OrvHost
