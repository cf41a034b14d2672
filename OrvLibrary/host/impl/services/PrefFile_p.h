#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

#include <QJsonObject>

#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/impl/files/FileHandle_p.h"

/// The JSON file of a `FilePrefSet`, with one member for each preference number. Several processes may share
/// it: `update` locks the file, reads it anew and then changes it.
class PrefFile
{
public:
    explicit PrefFile(const fileString& path, std::chrono::milliseconds lockWait = host::kLockWait);

    /// The members. Empty if the file is missing or is not a JSON object.
    QJsonObject read() const;
    /// Changes values and keeps all other members. Replaces the whole file. A file that is not a JSON object
    /// is first copied to a file with ".bad" appended.
    /// @param reason on failure, the file and the system's message
    /// @return the new members; empty on failure, and the file is then unchanged
    std::optional<QJsonObject> update(const std::map<int, PrefValue>& values, std::string& reason) const;

    /// The value of a number. Empty if there is no such member, or if it cannot be a preference value.
    static std::optional<PrefValue> value(const QJsonObject& members, int id);

private:
    bool makeFolder(std::string& reason) const;
    bool writeBadCopy(const QByteArray& bytes, std::string& reason) const;

    std::string mPath;
    std::chrono::milliseconds mLockWait;
};
