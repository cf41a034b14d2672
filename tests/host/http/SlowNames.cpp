#include "tests/host/http/SlowNames.h"

#include <atomic>
#include <chrono>
#include <string_view>
#include <thread>

#include <dlfcn.h>
#include <netdb.h>

namespace {

std::atomic<bool> gIsSlow{false};

} // namespace

// The transfer library calls this definition in place of that of the C library.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* name, const char* service,
                                                                  const addrinfo* hints, addrinfo** found)
{
    static auto* const own = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    if (!name || std::string_view(name) != "slow.test")
        return own(name, service, hints, found);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (gIsSlow && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return EAI_AGAIN;
}

namespace test {

SlowNames::SlowNames()
{
    gIsSlow = true;
}

SlowNames::~SlowNames()
{
    gIsSlow = false;
}

} // namespace test
