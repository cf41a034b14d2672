#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

/// Writes a new zip archive. Names are UTF-8 and all members have the same date, so equal content gives equal
/// bytes. Members are compressed, except for pictures and other compressed files. The archive is written
/// beside its path and renamed by `close()`. Until then, and after a failure, the path is unchanged. One
/// object belongs to one thread.
class ZipWriter
{
public:
    /// @throws std::runtime_error if the file cannot be made or another program is writing it; with the path
    /// and the reason
    explicit ZipWriter(const std::string& path);
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    /// Called with the number of bytes written since the last call, at most 1 MB. An exception ends the work
    /// and is passed on; the object cannot be used after that.
    using Progress = std::function<void(std::uint64_t bytes)>;
    void setProgress(const Progress& progress);

    /// @throws std::runtime_error if the member cannot be written
    void add(const std::string& name, const std::string& content);
    /// Adds the content of a file, read in pieces.
    /// @throws std::runtime_error if it cannot be read or written
    void addFile(const std::string& name, const std::string& path);
    /// Syncs the archive and gives it its name.
    /// @throws std::runtime_error if the archive cannot be completed
    void close();

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};
