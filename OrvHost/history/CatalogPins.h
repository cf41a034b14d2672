#pragma once

#include <set>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogPlace.h"

namespace OrvHost {

/// What the user wants kept at its version, in "catalog-pins.json" below the root.
/// docs/formats/catalog-pins.md describes the file. One object belongs to one thread.
class ORVHOST_EXPORT CatalogPins
{
public:
    /// Reads the file; one that is missing or not understood pins nothing.
    explicit CatalogPins(const fileString& root);

    bool isHeld(const CatalogPlace& place) const { return mHeld.count(place) != 0; }
    const std::set<CatalogPlace>& held() const { return mHeld; }

private:
    fileString mPath;
    std::set<CatalogPlace> mHeld;
};

} // namespace OrvHost
