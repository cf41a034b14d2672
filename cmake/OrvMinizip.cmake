# Minizip as a static library. The catalog service writes archives with it, and the tests read every archive with it,
# because it is an independent implementation. The library itself does not use it.

find_path(ORV_MINIZIP_INCLUDE_DIR minizip/unzip.h REQUIRED)
find_library(ORV_MINIZIP_LIBRARY NAMES libminizip.a REQUIRED)

add_library(Orv::Minizip STATIC IMPORTED)
set_target_properties(Orv::Minizip PROPERTIES
    IMPORTED_LOCATION "${ORV_MINIZIP_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${ORV_MINIZIP_INCLUDE_DIR}"
    INTERFACE_LINK_LIBRARIES ZLIB::ZLIB)
