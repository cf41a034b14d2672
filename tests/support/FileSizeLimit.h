#pragma once

#include <csignal>

#include <sys/resource.h>

namespace test {

/// Limits the size of every file that this process writes, so that writing fails as on a full disk, but with
/// EFBIG.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes) : mSignal(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &mFormer);
        const rlimit limit{bytes, mFormer.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &mFormer);
        std::signal(SIGXFSZ, mSignal);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit mFormer{};
    void (*const mSignal)(int);
};

} // namespace test
