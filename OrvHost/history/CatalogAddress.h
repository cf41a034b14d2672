#pragma once

#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogPlace.h"

/// Reads the address of a catalog request. May be used from any thread.
namespace OrvHost::CatalogAddress {

/// The name that is asked for, such as "Doors.orvlib" or "Garden.orvlibz"; empty when the address is that of
/// no catalog.
ORVHOST_EXPORT std::string nameIn(const std::string& url);
/// The installed file that the answer belongs to. Bonus and manufacturer catalogs are asked for alike: where
/// both folders hold one of that name, it is the manufacturer's, as it is for the library. An empty name when
/// no such file is there.
ORVHOST_EXPORT CatalogPlace placeOf(const std::string& url);
/// The archive of referenced files that an answer's body may replace; an empty name when it replaces none.
ORVHOST_EXPORT CatalogPlace archiveOf(const std::string& url);

} // namespace OrvHost::CatalogAddress
