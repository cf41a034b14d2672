#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QDateTime>

#include "OrvHost/history/CatalogPlace.h"

namespace OrvHost {

/// One file in the history, as its name tells of it: "20261121T211635123=TAG.orvlib", the time in UTC with
/// milliseconds and the tag with "%xx" for what is no letter, digit, dot, hyphen or underscore. In the folder
/// of a bonus or manufacturer catalog, a ".zip" of the same name is the archive of referenced files that
/// belongs to it. Not for use outside of this room.
struct HistoryEntry
{
    fileString file;
    QDateTime time;  ///< UTC
    std::string tag; ///< empty when it had none, or one that is too long for a file name

    /// The entry's own archive of referenced files, whether it is there or not.
    fileString companion() const;

    /// The entry of a file; none when its name is not of this form.
    static std::optional<HistoryEntry> ofFile(const fileString& file);
    /// The entries of a place, newest first, those included that are links to what is in the place.
    /// None when the folder cannot be read.
    static std::vector<HistoryEntry> of(const CatalogPlace& place);
    /// The same, for a caller that must not take a folder that cannot be read for an empty one.
    /// @throws std::filesystem::filesystem_error
    static std::vector<HistoryEntry> ofOrThrow(const CatalogPlace& place);
    /// A new entry for a place, newer than all others there. No file is made.
    /// @throws std::filesystem::filesystem_error when the folder is there and cannot be read
    static HistoryEntry next(const CatalogPlace& place, const std::string& tag);
};

} // namespace OrvHost
