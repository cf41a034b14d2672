#include "tests/host/files/LocklessSystem.h"

#include <ctime>
#include <utility>

#include <dlfcn.h>
#include <sys/file.h>

namespace {

bool gHasNoLocks = false;
int gReason = 0;
std::function<void()> gMeanwhile;

/// The function of the C library.
template <class Function>
Function* next(Function*, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// These definitions take precedence over those of the C library.
extern "C" {

int flock(int file, int operation) noexcept
{
    static auto* const own = next(&flock, "flock");
    if (!gHasNoLocks)
        return own(file, operation);
    errno = gReason;
    return -1;
}

int nanosleep(const struct timespec* time, struct timespec* left)
{
    static auto* const own = next(&nanosleep, "nanosleep");
    if (!gHasNoLocks)
        return own(time, left);
    gMeanwhile();
    return 0;
}

} // extern "C"

namespace test {

LocklessSystem::LocklessSystem(std::function<void()> meanwhile, int reason)
{
    gReason = reason;
    gMeanwhile = std::move(meanwhile);
    gHasNoLocks = true;
}

LocklessSystem::~LocklessSystem()
{
    gHasNoLocks = false;
}

} // namespace test
