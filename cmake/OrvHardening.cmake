# What a host that opens archives and answers of strangers should carry: checked buffer sizes, guarded stacks, tables
# that cannot be written after loading, programs at random addresses. Sanitized builds have stricter checks, which
# these would hide; a debug build takes the linker's part only.

include(CheckCXXCompilerFlag)
include(CheckPIESupported)

option(ORV_HARDENING "Harden the library and the programs" ON)

# Executables too, whatever the compiler's default is.
check_pie_supported(LANGUAGES CXX)

if(ORV_HARDENING AND NOT ORV_SANITIZE)
    set(hardening -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-protector-strong)
    # Not on every processor.
    foreach(flag IN ITEMS -fstack-clash-protection -fcf-protection)
        string(MAKE_C_IDENTIFIER "ORV_HAS${flag}" has)
        check_cxx_compiler_flag(${flag} ${has})
        if(${has})
            list(APPEND hardening ${flag})
        endif()
    endforeach()
    add_compile_options("$<$<NOT:$<CONFIG:Debug>>:${hardening}>")
    add_link_options("LINKER:-z,relro" "LINKER:-z,now" "LINKER:-z,noexecstack")
endif()
