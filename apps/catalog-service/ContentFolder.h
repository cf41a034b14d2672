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

/// An open file of a content folder, as it was when it was looked up: replacing it by another one of that
/// name does not touch it.
class ContentFile
{
public:
    /// Takes the descriptor over.
    explicit ContentFile(int descriptor) : mDescriptor(descriptor) {}
    ~ContentFile();
    ContentFile(const ContentFile&) = delete;
    ContentFile& operator=(const ContentFile&) = delete;

    /// Reads at most `size` bytes from `offset`. May be called from several threads at once.
    /// @return the number of bytes; 0 at the end or for an error
    std::size_t read(std::int64_t offset, char* buffer, std::size_t size) const;

    int descriptor() const { return mDescriptor; }
    std::int64_t size = 0;
    std::time_t modified = 0;
    /// SHA-1 of the contents in hexadecimal, in quotes.
    std::string tag;

private:
    int mDescriptor;
};

/// The folder that is served: its subfolders "content" and "manufacturers", looked into by names that come
/// from strangers. Nothing outside the folder is ever opened, wherever links lead. May be used from any
/// thread.
class ContentFolder
{
public:
    explicit ContentFolder(const std::string& folder);

    /// Whether the folder is there.
    bool exists() const { return !mRoot.empty(); }
    /// Looks for the first of these names in a subfolder. Null when there is none.
    std::shared_ptr<const ContentFile> find(const std::string& subfolder,
                                            const std::vector<std::string>& names);

private:
    std::shared_ptr<ContentFile> open(const std::string& subfolder, const std::string& name) const;
    std::string tagOf(const ContentFile& file);

    /// Real path without the final separator; empty when there is none.
    std::string mRoot;

    /// Differs between two states of a file: device, inode, size, modification time in nanoseconds.
    using State = std::tuple<std::uint64_t, std::uint64_t, std::int64_t, std::int64_t>;
    std::mutex mMutex;
    std::map<State, std::string> mTags;
};
