#pragma once

#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogPlace.h"

/// Reads the addresses of catalog requests. May be used from any thread.
namespace OrvHost::CatalogAddress {

/// The requested name, such as "Doors.orvlib" or "Garden.orvlibz". Empty if the address is not for a catalog.
ORVHOST_EXPORT std::string nameIn(const std::string& url);
/// The installed file that the answer belongs to. Bonus and manufacturer catalogs have the same form of
/// address. If both folders have a catalog with this name, it is the manufacturer's, as in the library. The
/// name is empty if there is no such file.
ORVHOST_EXPORT CatalogPlace placeOf(const std::string& url);
/// The archive of referenced files that the answer's body may replace. The name is empty if there is none.
ORVHOST_EXPORT CatalogPlace archiveOf(const std::string& url);

} // namespace OrvHost::CatalogAddress
