#pragma once

#include <cstdint>
#include <stdexcept>

#include <pthread.h>

namespace test {

/// Lets no thread be started in this process, as where the system has no more of them, from construction to
/// the end of the block: each would need more memory for its stack than there are addresses.
class NoMoreThreads
{
public:
    NoMoreThreads()
    {
        pthread_attr_t without;
        if (pthread_getattr_default_np(&mFormer) != 0 || pthread_getattr_default_np(&without) != 0 ||
            pthread_attr_setstacksize(&without, SIZE_MAX / 4) != 0 ||
            pthread_setattr_default_np(&without) != 0)
            throw std::runtime_error("threads cannot be kept from starting");
        pthread_attr_destroy(&without);
    }
    ~NoMoreThreads()
    {
        pthread_setattr_default_np(&mFormer);
        pthread_attr_destroy(&mFormer);
    }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;

private:
    pthread_attr_t mFormer;
};

} // namespace test
