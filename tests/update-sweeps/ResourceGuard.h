#pragma once

#include <cstddef>

namespace test {

/// Fails the test at the end of the block when the process has more open descriptors or more threads than at
/// its start. To be declared before the world whose end is to be waited for.
class ResourceGuard
{
public:
    ResourceGuard();
    ~ResourceGuard();
    ResourceGuard(const ResourceGuard&) = delete;
    ResourceGuard& operator=(const ResourceGuard&) = delete;

private:
    std::size_t mDescriptors;
    std::size_t mThreads;
};

} // namespace test
