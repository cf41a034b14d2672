#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

#include <QJsonObject>

#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/impl/files/FileHandle_p.h"

/// The JSON file behind `FilePrefSet`: one member per preference number. Several processes may use one file;
/// a change is made under an advisory lock on what the file holds at that moment.
class PrefFile
{
public:
    explicit PrefFile(const fileString& path, std::chrono::milliseconds lockWait = host::kLockWait);

    /// The members; none when the file is missing or cannot be read as a JSON object.
    QJsonObject read() const;
    /// Puts values into the file and keeps its other members. The file is replaced as a whole, and what was
    /// not a JSON object is first copied aside with ".bad" appended.
    /// @param reason filled with the file and the system's text on failure
    /// @return what the file holds now; nothing on failure, when the file is as it was
    std::optional<QJsonObject> update(const std::map<int, PrefValue>& values, std::string& reason) const;

    /// The value of a number; nothing when there is no such member, or one that is no preference value.
    static std::optional<PrefValue> value(const QJsonObject& members, int id);

private:
    bool makeFolder(std::string& reason) const;
    bool writeBadCopy(const QByteArray& bytes, std::string& reason) const;

    std::string mPath;
    std::chrono::milliseconds mLockWait;
};
