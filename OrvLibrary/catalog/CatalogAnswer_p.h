#pragma once

#include <cstdint>
#include <string>

#include "OrvLibrary/CatalogUpdateData.h"

namespace LibraryCatalogUpdate {

/// Takes status, `Content-Length` and `ETag` of a header answer over into a record; of a header that comes
/// several times the last value counts. Fields that the answer lacks stay as they are.
/// @param headerText the raw header block
void readAnswer(const std::string& headerText, std::int64_t status, CatalogUpdateData& record);

} // namespace LibraryCatalogUpdate
