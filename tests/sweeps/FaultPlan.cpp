#include "tests/sweeps/FaultPlan.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace fault {

namespace {

constexpr std::size_t kPathSize = 4096;
constexpr useconds_t kLateness = 8000; // in microseconds

/// Read once before the program starts. It uses plain arrays, because the shim must not depend on the
/// functions that it disturbs.
struct Plan
{
    char root[kPathSize] = "";
    char kinds[512] = "";
    long at = 0;
    bool forEver = false;
    bool kill = false;
    bool torn = false;
    bool half = false;
    bool late = false;
    bool stop = false;
    int error = 0;
    int log = -1;
};

Plan plan;
std::atomic<long> calls{0};

const char* setting(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// Bypasses the library functions that the shim replaces.
int rawOpen(const char* path)
{
    return static_cast<int>(
        syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
}

void rawWrite(int descriptor, const char* text, std::size_t size)
{
    syscall(SYS_write, descriptor, text, size);
}

__attribute__((constructor)) void readPlan()
{
    std::strncpy(plan.root, setting("ORV_FAULT_ROOT"), sizeof plan.root - 1);
    std::strncpy(plan.kinds, setting("ORV_FAULT_CALLS"), sizeof plan.kinds - 1);
    plan.at = std::atol(setting("ORV_FAULT_AT"));
    plan.forEver = *setting("ORV_FAULT_EVER") != '\0';
    const char* const what = setting("ORV_FAULT_DO");
    plan.kill = std::strcmp(what, "kill") == 0;
    plan.torn = std::strcmp(what, "torn") == 0;
    plan.half = std::strcmp(what, "short") == 0;
    plan.late = std::strcmp(what, "late") == 0;
    plan.stop = std::strcmp(what, "stop") == 0;
    plan.error = std::atoi(what);
    if (*setting("ORV_FAULT_LOG"))
        plan.log = rawOpen(setting("ORV_FAULT_LOG"));
}

/// Whether the comma-separated list of kinds contains this kind.
bool isListed(const char* kind)
{
    const std::size_t size = std::strlen(kind);
    for (const char* found = std::strstr(plan.kinds, kind); found; found = std::strstr(found + 1, kind)) {
        const bool starts = found == plan.kinds || found[-1] == ',';
        if (starts && (found[size] == ',' || found[size] == '\0'))
            return true;
    }
    return false;
}

bool isBelowRoot(const char* path)
{
    const std::size_t size = std::strlen(plan.root);
    return size > 0 && std::strncmp(path, plan.root, size) == 0 && (path[size] == '/' || path[size] == '\0');
}

void linkTarget(const char* link, char* path)
{
    const long size = syscall(SYS_readlink, link, path, kPathSize - 1);
    path[size > 0 ? size : 0] = '\0';
}

void pathOfFile(int descriptor, char* path)
{
    char link[64] = "/proc/self/cwd";
    if (descriptor != AT_FDCWD)
        std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    linkTarget(link, path);
}

void absolute(int folder, const char* path, char* result)
{
    result[0] = '\0';
    if (path[0] != '/') {
        pathOfFile(folder, result);
        std::strncat(result, "/", kPathSize - 1 - std::strlen(result));
    }
    std::strncat(result, path, kPathSize - 1 - std::strlen(result));
}

void logCall(const char* kind, const char* path)
{
    char line[kPathSize + 64];
    const int size = std::snprintf(line, sizeof line, "%s %s\n", kind, path);
    rawWrite(plan.log, line, std::strlen(line));
    static_cast<void>(size);
}

Outcome count(const char* kind, const char* path)
{
    const long number = ++calls;
    if (plan.log >= 0)
        logCall(kind, path);
    const bool isHit = plan.at > 0 && (plan.forEver ? number >= plan.at : number == plan.at);
    if (!isHit)
        return Outcome::Proceed;
    const bool canBeHalf = std::strcmp(kind, "write") == 0 || std::strcmp(kind, "read") == 0;
    if (plan.kill || (plan.torn && !canBeHalf))
        die();
    if (plan.torn)
        return Outcome::Torn;
    if (plan.half)
        return canBeHalf ? Outcome::Half : Outcome::Proceed;
    if (plan.late) {
        usleep(kLateness);
        return Outcome::Proceed;
    }
    if (plan.stop) {
        syscall(SYS_kill, getpid(), SIGSTOP);
        return Outcome::Proceed;
    }
    errno = plan.error;
    return Outcome::Fail;
}

} // namespace

Outcome onPath(const char* kind, int folder, const char* path)
{
    return onPaths(kind, folder, path, folder, path);
}

Outcome onPaths(const char* kind, int fromFolder, const char* from, int toFolder, const char* to)
{
    const int former = errno;
    char full[kPathSize];
    Outcome outcome = Outcome::Proceed;
    if (isListed(kind)) {
        absolute(fromFolder, from, full);
        if (!isBelowRoot(full))
            absolute(toFolder, to, full);
        if (isBelowRoot(full))
            outcome = count(kind, full);
    }
    if (outcome == Outcome::Proceed)
        errno = former;
    return outcome;
}

Outcome onFile(const char* kind, int descriptor)
{
    const int former = errno;
    char full[kPathSize];
    Outcome outcome = Outcome::Proceed;
    if (isListed(kind)) {
        pathOfFile(descriptor, full);
        if (isBelowRoot(full))
            outcome = count(kind, full);
    }
    if (outcome == Outcome::Proceed)
        errno = former;
    return outcome;
}

Outcome onAny(const char* kind)
{
    return isListed(kind) ? count(kind, "-") : Outcome::Proceed;
}

void die()
{
    raise(SIGKILL);
    for (;;) // waits for the signal to be delivered
        pause();
}

} // namespace fault
