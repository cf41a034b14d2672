#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include "OrvLibrary/host/fileString.h"

namespace test {

/// Lists the files of a folder that are opened, and those that are closed, from now on.
class FolderWatch
{
public:
    explicit FolderWatch(const std::string& folder)
    {
        if (inotify_add_watch(mQueue, folder.c_str(), IN_OPEN | IN_CLOSE) < 0)
            ADD_FAILURE() << "the folder cannot be watched";
    }
    ~FolderWatch() { close(mQueue); }
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    std::ptrdiff_t opened(const fileString& file) { return count(mOpened, file); }
    std::ptrdiff_t closed(const fileString& file) { return count(mClosed, file); }
    /// Waits until a file is opened or closed.
    /// @return false if nothing happens for a long time
    bool wait()
    {
        constexpr int kLongTime = 30'000; // milliseconds
        pollfd queue = {mQueue, POLLIN, 0};
        return poll(&queue, 1, kLongTime) == 1;
    }

private:
    using Names = std::vector<std::string>;

    std::ptrdiff_t count(const Names& names, const fileString& file)
    {
        read();
        return std::count(names.begin(), names.end(), file.stemWithExtension().toNativeString());
    }
    void read()
    {
        alignas(inotify_event) char events[4096];
        for (ssize_t size; (size = ::read(mQueue, events, sizeof events)) > 0;) {
            for (ssize_t at = 0; at < size;) {
                const auto& event = *reinterpret_cast<const inotify_event*>(events + at);
                ((event.mask & IN_OPEN) != 0 ? mOpened : mClosed)
                    .emplace_back(event.len > 0 ? event.name : "");
                at += static_cast<ssize_t>(sizeof event + event.len);
            }
        }
    }

    int mQueue = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    Names mOpened;
    Names mClosed;
};

} // namespace test
