# Compiler settings that hold for every target of the project.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

find_program(ORV_CCACHE ccache)
if(ORV_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${ORV_CCACHE}")
endif()

# The one place for warnings; every target of ours links it.
add_library(orv_warnings INTERFACE)
target_compile_options(orv_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2)
if(ORV_WARNINGS_AS_ERRORS)
    target_compile_options(orv_warnings INTERFACE -Werror)
endif()

# Source files are named from the top of the tree, so that installed files contain no build path.
add_compile_options("-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")

# Tests run with the checks of the standard library: for example, an index out of range ends the program.
if(ORV_BUILD_TESTS)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

if(ORV_SANITIZE)
    add_compile_options(-fsanitize=${ORV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${ORV_SANITIZE})
endif()
if(ORV_COVERAGE)
    # Without atomic updates, threads would lose counts and make some of them negative.
    add_compile_options(--coverage -fprofile-update=atomic -O0)
    add_link_options(--coverage)
endif()
