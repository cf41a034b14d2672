# Libdeflate inflates whole members two to three times as fast as zlib. Zlib inflates members that do not fit into memory.

find_path(ORV_LIBDEFLATE_INCLUDE_DIR libdeflate.h REQUIRED)
find_library(ORV_LIBDEFLATE_LIBRARY NAMES libdeflate.a deflate REQUIRED)

add_library(Orv::Libdeflate UNKNOWN IMPORTED)
set_target_properties(Orv::Libdeflate PROPERTIES
    IMPORTED_LOCATION "${ORV_LIBDEFLATE_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${ORV_LIBDEFLATE_INCLUDE_DIR}")
