#include "tests/allocation-sweeps/AllocationPlan.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include <link.h>
#include <unwind.h>

namespace {

/// Where a module's code lies in memory.
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

/// The search for who asks: the first frame beyond `operator new` that is not the standard library's.
struct Search
{
    int depth = 0;
    bool isOurs = false;
};

_Unwind_Reason_Code visit(_Unwind_Context* context, void* data)
{
    Search& search = *static_cast<Search*>(data);
    constexpr int kOwnFrames = 3; // this search, `enter`, and `operator new`
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

thread_local bool tCounts = false;
std::atomic<bool> planned{false};
std::atomic<bool> countsAll{false};
std::atomic<std::size_t> counted{0};
std::atomic<std::size_t> failing{0};

/// Whether this allocation fails.
[[gnu::noinline]] bool enter()
{
    if (!tCounts || !planned)
        return false;
    tCounts = false; // what the search itself allocates does not count
    const bool isFailure = (countsAll || isAskedByUs()) && ++counted == failing;
    tCounts = true;
    return isFailure;
}

} // namespace

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

/// Asked by the leak sanitizer. Qt copies the arguments of a queued call one by one, and where there is no
/// memory for one of them it loses those before it.
extern "C" const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions()
{
    return "leak:QMetaType::create\n";
}

namespace test {

AllocationPlan::AllocationPlan(std::size_t number, Whose whose)
{
    static_cast<void>(modules());
    countsAll = whose == Whose::Everybodys;
    counted = 0;
    failing = number;
    planned = true;
}

AllocationPlan::~AllocationPlan()
{
    planned = false;
}

std::size_t AllocationPlan::count() const
{
    return counted;
}

bool AllocationPlan::hasFailed() const
{
    return failing > 0 && counted >= failing;
}

CountedAllocations::CountedAllocations()
{
    tCounts = true;
}

CountedAllocations::~CountedAllocations()
{
    tCounts = false;
}

} // namespace test
