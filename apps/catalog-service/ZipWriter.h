#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

/// Writes a new zip archive: each member with a UTF-8 name and one fixed date, so that equal members give
/// equal bytes. Members are deflated, but for pictures and other files that are compressed already, which are
/// stored. The archive is written beside its path and takes its place with `close()`; until then, and after a
/// failure, nothing of that name changes. One object belongs to one thread.
class ZipWriter
{
public:
    /// @throws std::runtime_error when the file cannot be made, or another program is writing it; with the
    /// path and the reason
    explicit ZipWriter(const std::string& path);
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    /// Told how many bytes of content were written since the last call, at most 1 MB. An exception ends the
    /// work and passes through; the archive is then not to be used any more.
    using Progress = std::function<void(std::uint64_t bytes)>;
    void setProgress(const Progress& progress);

    /// @throws std::runtime_error when the member cannot be written
    void add(const std::string& name, const std::string& content);
    /// Adds a file's content, read in pieces.
    /// @throws std::runtime_error when it cannot be read or written
    void addFile(const std::string& name, const std::string& path);
    /// Syncs the archive and gives it its name.
    /// @throws std::runtime_error when the archive cannot be completed
    void close();

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};
