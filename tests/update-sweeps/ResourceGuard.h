#pragma once

#include <cstddef>

namespace test {

/// Fails the test in its destructor if the process has more open descriptors or threads than before. Declare
/// it before the world, so that the world is destroyed first.
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
