#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

/// An open file of a content folder. It stays the same even if another file replaces it.
class ContentFile
{
public:
    /// Takes ownership of the descriptor.
    explicit ContentFile(int descriptor) : mDescriptor(descriptor) {}
    ~ContentFile();
    ContentFile(const ContentFile&) = delete;
    ContentFile& operator=(const ContentFile&) = delete;

    /// Reads at most `size` bytes from `offset`. Several threads may call it at the same time.
    /// @return the number of bytes; 0 at the end or after an error
    std::size_t read(std::int64_t offset, char* buffer, std::size_t size) const;

    int descriptor() const { return mDescriptor; }
    std::int64_t size = 0;
    std::time_t modified = 0;
    /// The SHA-1 of the content in hexadecimal, in quotes.
    std::string tag;

private:
    int mDescriptor;
};

/// The folder with the subfolders "content" and "manufacturers". The names come from strangers, so no file
/// outside of the folder is ever opened, even if links lead there. May be used from any thread.
class ContentFolder
{
public:
    explicit ContentFolder(const std::string& folder);

    /// Whether the folder exists.
    bool exists() const { return !mRoot.empty(); }
    /// Finds the first of these names in a subfolder. Null if none exists.
    std::shared_ptr<const ContentFile> find(const std::string& subfolder,
                                            const std::vector<std::string>& names);

private:
    std::shared_ptr<ContentFile> open(const std::string& subfolder, const std::string& name) const;
    std::string tagOf(const ContentFile& file);

    /// The real path without a separator at the end; empty if it does not exist.
    std::string mRoot;

    /// Identifies the state of a file: device, inode, size, and modification time in nanoseconds.
    using State = std::tuple<std::uint64_t, std::uint64_t, std::int64_t, std::int64_t>;
    std::mutex mMutex;
    std::map<State, std::string> mTags;
};
