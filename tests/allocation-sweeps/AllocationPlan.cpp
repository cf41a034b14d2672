#include "tests/allocation-sweeps/AllocationPlan.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>

#include <dlfcn.h>
#include <link.h>
#include <pthread.h>
#include <unwind.h>

namespace {

/// The address range of a module's code.
struct CodeRange
{
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;

    bool holds(std::uintptr_t address) const { return address >= begin && address < end; }
};

struct Modules
{
    CodeRange program;
    CodeRange standardLibrary;
};

int noteModule(dl_phdr_info* info, std::size_t, void* data)
{
    Modules& modules = *static_cast<Modules*>(data);
    const bool isProgram = *info->dlpi_name == '\0' && modules.program.end == 0;
    if (!isProgram && !std::strstr(info->dlpi_name, "libstdc++"))
        return 0;
    CodeRange& range = isProgram ? modules.program : modules.standardLibrary;
    for (int index = 0; index < info->dlpi_phnum; ++index) {
        const ElfW(Phdr)& part = info->dlpi_phdr[index];
        if (part.p_type != PT_LOAD || (part.p_flags & PF_X) == 0)
            continue;
        range.begin = info->dlpi_addr + part.p_vaddr;
        range.end = range.begin + part.p_memsz;
    }
    return 0;
}

const Modules& modules()
{
    static const Modules sModules = [] {
        Modules found;
        dl_iterate_phdr(noteModule, &found);
        return found;
    }();
    return sModules;
}

/// Searches the call stack for the caller: the first frame above `operator new` outside the standard library.
struct Search
{
    int depth = 0;
    bool isOurs = false;
};

_Unwind_Reason_Code visit(_Unwind_Context* context, void* data)
{
    Search& search = *static_cast<Search*>(data);
    constexpr int kOwnFrames = 3; // this function, `enter`, and `operator new` or `pthread_create`
    if (++search.depth <= kOwnFrames)
        return _URC_NO_REASON;
    const std::uintptr_t address = _Unwind_GetIP(context) - 1;
    if (modules().standardLibrary.holds(address))
        return _URC_NO_REASON;
    search.isOurs = modules().program.holds(address);
    return _URC_END_OF_STACK;
}

[[gnu::noinline]] bool isAskedByUs()
{
    Search search;
    _Unwind_Backtrace(visit, &search);
    return search.isOurs;
}

using test::CountedThread;

constexpr std::size_t indexOf(CountedThread thread)
{
    return static_cast<std::size_t>(thread);
}

/// Whether and how the plan counts the current thread.
struct Part
{
    bool counts = false;
    CountedThread thread = CountedThread::Caller;
};

thread_local Part tPart;
std::atomic<bool> planned{false};
std::atomic<bool> countsAll{false};
std::atomic<CountedThread> failingThread{CountedThread::Caller};
std::atomic<std::size_t> failing{0};
std::array<std::atomic<std::size_t>, 2> counted{};

/// Counts this allocation and returns whether it must fail.
[[gnu::noinline]] bool enter()
{
    if (!tPart.counts || !planned)
        return false;
    tPart.counts = false; // allocations of the stack walk do not count
    const bool isFailure = (countsAll || isAskedByUs()) && ++counted[indexOf(tPart.thread)] == failing &&
                           tPart.thread == failingThread;
    tPart.counts = true;
    return isFailure;
}

std::mutex helperMutex; ///< guards the variables below
std::condition_variable helpersChanged;
int helpers = 0;

void addHelpers(int count)
{
    const std::lock_guard<std::mutex> lock(helperMutex);
    helpers += count;
    helpersChanged.notify_all();
}

using Routine = void* (*)(void*);

/// The function and argument of a new helper thread.
struct Start
{
    Routine routine;
    void* argument;
};

void* runHelper(void* data)
{
    const std::unique_ptr<Start, decltype(&std::free)> start(static_cast<Start*>(data), &std::free);
    tPart = {true, CountedThread::Helper};
    void* const result = start->routine(start->argument);
    tPart = {};
    addHelpers(-1);
    return result;
}

} // namespace

/// Takes precedence over the system's function, also for calls of the standard library.
extern "C" [[gnu::noinline]] int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                                Routine routine, void* argument)
{
    using Create = int (*)(pthread_t*, const pthread_attr_t*, Routine, void*);
    static const auto create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    if (enter())
        return EAGAIN;
    if (!tPart.counts)
        return create(thread, attributes, routine, argument);
    auto* const start = static_cast<Start*>(std::malloc(sizeof(Start)));
    *start = {routine, argument};
    addHelpers(1);
    const int error = create(thread, attributes, runHelper, start);
    if (error != 0) {
        addHelpers(-1);
        std::free(start);
    }
    return error;
}

[[gnu::noinline]] void* operator new(std::size_t size)
{
    void* const memory = enter() ? nullptr : std::malloc(size > 0 ? size : 1);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

/// The leak sanitizer calls this function, so it must be exported. Qt copies the arguments of a queued call
/// one by one. If an allocation fails there, Qt leaks the copies made before.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions()
{
    return "leak:QMetaType::create\n";
}

namespace test {

AllocationPlan::AllocationPlan(std::size_t number, Whose whose, CountedThread thread)
{
    static_cast<void>(modules());
    countsAll = whose == Whose::Everybodys;
    counted[indexOf(CountedThread::Caller)] = 0;
    counted[indexOf(CountedThread::Helper)] = 0;
    failing = number;
    failingThread = thread;
    planned = true;
}

AllocationPlan::~AllocationPlan()
{
    planned = false;
}

std::size_t AllocationPlan::count(CountedThread thread) const
{
    return counted[indexOf(thread)];
}

bool AllocationPlan::hasFailed() const
{
    return failing > 0 && counted[indexOf(failingThread)] >= failing;
}

void AllocationPlan::waitForHelpers()
{
    std::unique_lock<std::mutex> lock(helperMutex);
    helpersChanged.wait(lock, [] { return helpers == 0; });
}

CountedAllocations::CountedAllocations()
{
    tPart = {true, CountedThread::Caller};
}

CountedAllocations::~CountedAllocations()
{
    tPart = {};
}

} // namespace test
