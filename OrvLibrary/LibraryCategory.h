#pragma once

#include <cstdint>

namespace Library {

/// The kind of library content that a catalog holds. It selects the catalog's folder, the form of its web
/// address and the way in which it is installed.
enum LibraryCategory : std::int32_t
{
    kCoreLibrary = 1,
    kManufacturerLibrary = 2,
    kBonusLibrary = 4,
};

} // namespace Library
