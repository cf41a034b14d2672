# Minizip, as a static library: the names that it defines must not leave libOrvLibrary.so, because a host may
# hold another zip library that exports the same names over other structures.

find_path(ORV_MINIZIP_INCLUDE_DIR minizip/unzip.h REQUIRED)
find_library(ORV_MINIZIP_LIBRARY NAMES libminizip.a REQUIRED)

add_library(Orv::Minizip STATIC IMPORTED)
set_target_properties(Orv::Minizip PROPERTIES
    IMPORTED_LOCATION "${ORV_MINIZIP_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${ORV_MINIZIP_INCLUDE_DIR}"
    INTERFACE_LINK_LIBRARIES ZLIB::ZLIB)
