#pragma once

#include <cstdint>
#include <string>

#include "OrvLibrary/CatalogUpdateData.h"

namespace LibraryCatalogUpdate {

/// Copies the status, `Content-Length` and `ETag` of an answer into a record. If a header occurs several
/// times, its last value counts. Fields missing from the answer stay unchanged.
/// @param headerText the raw header block
void readAnswer(const std::string& headerText, std::int64_t status, CatalogUpdateData& record);

} // namespace LibraryCatalogUpdate
