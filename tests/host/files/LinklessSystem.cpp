#include "tests/host/files/LinklessSystem.h"

#include <cerrno>
#include <cstdio>

#include <dlfcn.h>
#include <unistd.h>

namespace {

bool gHasNoLinks = false;

/// The function of the C library.
template <class Function>
Function* next(Function*, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// These definitions take precedence over those of the C library.
extern "C" {

int link(const char* from, const char* to) noexcept
{
    static auto* const own = next(&link, "link");
    if (!gHasNoLinks)
        return own(from, to);
    errno = EPERM;
    return -1;
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept
{
    static auto* const own = next(&renameat2, "renameat2");
    if (!gHasNoLinks)
        return own(fromFolder, from, toFolder, to, flags);
    errno = EINVAL;
    return -1;
}

} // extern "C"

namespace test {

LinklessSystem::LinklessSystem()
{
    gHasNoLinks = true;
}

LinklessSystem::~LinklessSystem()
{
    gHasNoLinks = false;
}

} // namespace test
