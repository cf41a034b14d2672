# Protections for a host that opens archives and reads responses from other machines: checked buffer sizes, tables that are
# read-only after loading, programs at random addresses. Sanitized builds have stricter checks, which these would hide. A
# debug build has only the protections of the linker.

include(CheckCXXCompilerFlag)
include(CheckPIESupported)

option(ORV_HARDENING "Harden the library and the programs" ON)

# Executables too, whatever the compiler's default is.
check_pie_supported(LANGUAGES CXX)

if(ORV_HARDENING AND NOT ORV_SANITIZE)
    set(hardening -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-protector-strong)
    # Not available on every processor.
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
