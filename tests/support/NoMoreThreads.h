#pragma once

#include <cstdint>
#include <stdexcept>

#include <pthread.h>

namespace test {

/// Makes the start of every thread in this process fail until the destructor, as if the system had no threads
/// left. It sets a default stack size that exceeds the address space.
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
