#pragma once

#include <sys/resource.h>

namespace test {

/// Limits how many descriptors this process may have. Those that are open stay open.
class DescriptorLimit
{
public:
    explicit DescriptorLimit(rlim_t descriptors)
    {
        getrlimit(RLIMIT_NOFILE, &mFormer);
        const rlimit limit{descriptors, mFormer.rlim_max};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &mFormer); }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

private:
    rlimit mFormer{};
};

} // namespace test
