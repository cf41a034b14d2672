#pragma once

#include <atomic>
#include <cstddef>
#include <thread>

namespace ZipUtils {

/// A new file mapped into memory. Its space on the disk is reserved first, so that no write can fail later. A
/// thread asks the system for the pages before they are written: handing out and clearing 200 MB of pages
/// takes half as long as inflating into them.
class MappedFile
{
public:
    /// @param file is open for reading and writing and stays open
    MappedFile(int file, std::size_t size);
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    /// Null if the file system does not support it, or if the disk is full.
    unsigned char* pages() const { return mPages; }
    /// Why the disk has no space for the file, as in `errno`; 0 if it has.
    int refusal() const { return mRefusal; }

private:
    void askForPages() const noexcept;

    std::size_t mSize;
    int mRefusal = 0;
    unsigned char* mPages = nullptr;
    std::atomic<bool> mIsStopped{false};
    std::thread mThread; ///< none if it could not be started
};

} // namespace ZipUtils
