#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QDateTime>

#include "OrvHost/history/CatalogPlace.h"

namespace OrvHost {

/// One file in the history. Its name has the form "20261121T211635123=TAG.orvlib": the time in UTC with
/// milliseconds, and the tag, in which all characters except letters, digits, dots, hyphens and underscores
/// are written as "%xx". For a bonus or manufacturer catalog, a ".zip" with the same name is its archive of
/// referenced files. Only for use in this room.
struct HistoryEntry
{
    fileString file;
    QDateTime time;  ///< UTC
    std::string tag; ///< empty if it had none, or one that is too long for a file name

    /// The path of the entry's archive of referenced files, which need not exist.
    fileString companion() const;

    /// The entry for a file; empty if its name does not have this form.
    static std::optional<HistoryEntry> ofFile(const fileString& file);
    /// The entries of a place, newest first. Includes links to the file in place. Empty if the folder cannot
    /// be read.
    static std::vector<HistoryEntry> of(const CatalogPlace& place);
    /// The same, for callers for whom an unreadable folder is not an empty one.
    /// @throws std::filesystem::filesystem_error
    static std::vector<HistoryEntry> ofOrThrow(const CatalogPlace& place);
    /// A new entry for a place, newer than all others. Makes no file.
    /// @throws std::filesystem::filesystem_error if the folder exists and cannot be read
    static HistoryEntry next(const CatalogPlace& place, const std::string& tag);
};

} // namespace OrvHost
