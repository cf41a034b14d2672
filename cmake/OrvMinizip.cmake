# Minizip, as a static library, for what is not in the library: the catalog service writes archives with it, and the
# tests read every archive back with it, because it is another maker's.

find_path(ORV_MINIZIP_INCLUDE_DIR minizip/unzip.h REQUIRED)
find_library(ORV_MINIZIP_LIBRARY NAMES libminizip.a REQUIRED)

add_library(Orv::Minizip STATIC IMPORTED)
set_target_properties(Orv::Minizip PROPERTIES
    IMPORTED_LOCATION "${ORV_MINIZIP_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${ORV_MINIZIP_INCLUDE_DIR}"
    INTERFACE_LINK_LIBRARIES ZLIB::ZLIB)
