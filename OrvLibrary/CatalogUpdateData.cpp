#include "OrvLibrary/CatalogUpdateData.h"

namespace LibraryCatalogUpdate {

namespace {

constexpr std::int64_t kHttpOk = 200;

} // namespace

bool CatalogUpdateData::needsUpdate() const
{
    return responseStatus == kHttpOk && serverETag != localHash;
}

} // namespace LibraryCatalogUpdate
