#pragma once

#include <memory>
#include <string>

/// Writes a new zip archive: each member deflated, with a UTF-8 name and one fixed date, so that equal
/// members give equal bytes. The archive is written beside its path and takes its place with `close()`; until
/// then, and after a failure, nothing of that name changes. One object belongs to one thread.
class ZipWriter
{
public:
    /// @throws std::runtime_error when the file cannot be made, with the path and the reason
    explicit ZipWriter(const std::string& path);
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    /// @throws std::runtime_error when the member cannot be written
    void add(const std::string& name, const std::string& content);
    /// Adds a file's content, read in pieces.
    /// @throws std::runtime_error when it cannot be read or written
    void addFile(const std::string& name, const std::string& path);
    /// @throws std::runtime_error when the archive cannot be completed
    void close();

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};
