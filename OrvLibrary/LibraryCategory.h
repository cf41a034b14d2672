#pragma once

#include <cstdint>

namespace Library {

/// The kind of content in a catalog. It determines the catalog's folder, the form of its web address and how
/// it is installed.
enum LibraryCategory : std::int32_t
{
    kCoreLibrary = 1,
    kManufacturerLibrary = 2,
    kBonusLibrary = 4,
};

} // namespace Library
