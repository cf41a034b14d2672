#include "OrvHost/imports/ImportRecord_p.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <sys/stat.h>

#include "OrvHost/TextFile.h"
#include "OrvLibrary/IO/LibraryImport.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

namespace {

constexpr std::int64_t kNanoseconds = 1000000000;
const char* const kStates[] = {"begun", "done", "undoing"};

fileString recordIn(const fileString& folder)
{
    return folder / fileString("imports.json");
}

QJsonValue document(const FileStamp& stamp)
{
    if (!stamp.exists)
        return {};
    // As a text, because a JSON number cannot hold nanoseconds exactly.
    return QJsonObject{{"size", static_cast<qint64>(stamp.size)},
                       {"modified", QString::number(static_cast<qlonglong>(stamp.modified))}};
}

QJsonObject document(const ImportEntry& entry)
{
    QJsonArray parts;
    for (const ImportPart& part : entry.parts)
        parts.append(QJsonObject{{"file", QString::fromStdString(part.role)},
                                 {"before", document(part.before)},
                                 {"after", document(part.after)}});
    // A file name may have any bytes, so it is escaped.
    const QByteArray name = QByteArray::fromStdString(entry.name).toPercentEncoding();
    return {{"number", entry.number},
            {"name", QString::fromLatin1(name)},
            {"proprietary", entry.isProprietary},
            {"state", kStates[static_cast<int>(entry.state)]},
            {"files", parts}};
}

FileStamp stampOf(const QJsonValue& value)
{
    const QJsonObject object = value.toObject();
    return {value.isObject(), static_cast<std::int64_t>(object["size"].toDouble()),
            object["modified"].toString().toLongLong()};
}

/// Roles become file names, so a changed record must not lead to other files.
bool isRole(const std::string& role)
{
    const bool isKnown = role.compare(0, 7, "library") == 0 || role.compare(0, 8, "textures") == 0;
    return isKnown && role.find('/') == std::string::npos && role.find('\0') == std::string::npos;
}

bool isName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

bool readEntry(const QJsonObject& object, ImportEntry& entry)
{
    entry.number = object["number"].toInt();
    entry.name = QByteArray::fromPercentEncoding(object["name"].toString().toLatin1()).toStdString();
    entry.isProprietary = object["proprietary"].toBool();
    const auto state = std::find(std::begin(kStates), std::end(kStates), object["state"].toString());
    if (entry.number < 1 || !isName(entry.name) || state == std::end(kStates))
        return false;
    entry.state = static_cast<ImportEntry::State>(state - std::begin(kStates));
    for (const QJsonValue& value : object["files"].toArray()) {
        const QJsonObject part = value.toObject();
        const std::string role = part["file"].toString().toStdString();
        if (!isRole(role))
            return false;
        entry.parts.push_back({role, stampOf(part["before"]), stampOf(part["after"])});
    }
    return true;
}

} // namespace

FileStamp FileStamp::of(const fileString& path)
{
    struct stat status
    {
    };
    if (lstat(path.toNativeString().c_str(), &status) != 0)
        return {};
    return {true, status.st_size, status.st_mtim.tv_sec * kNanoseconds + status.st_mtim.tv_nsec};
}

bool FileStamp::operator==(const FileStamp& other) const
{
    return exists == other.exists && size == other.size && modified == other.modified;
}

const ImportPart* ImportEntry::part(const std::string& role) const
{
    const auto found =
        std::find_if(parts.begin(), parts.end(), [&](const ImportPart& part) { return part.role == role; });
    return found == parts.end() ? nullptr : &*found;
}

fileString ImportEntry::path(const ImportPart& part) const
{
    const std::string textures = "textures";
    if (part.role.compare(0, textures.size(), textures) == 0)
        return ImportFiles::textures(fileString(name), isProprietary) +
               fileString(part.role.substr(textures.size()));
    return ImportFiles::library(fileString(name), isProprietary) + fileString(part.role.substr(7));
}

fileString ImportEntry::changedFile(const ImportPart& part) const
{
    const fileString link = path(part);
    std::error_code error;
    const std::filesystem::path file = std::filesystem::canonical(link.toNativeString(), error);
    const bool isBehindLink =
        part.role == "textures" && !error && std::filesystem::is_symlink(link.toNativeString(), error);
    return isBehindLink ? fileString(file.string()) : link;
}

fileString ImportEntry::keptName(const ImportPart& part) const
{
    return fileString(std::to_string(number) + "." + part.role);
}

bool ImportEntry::hasTakenPlace() const
{
    const ImportPart* library = part("library");
    const ImportPart* last = library ? library : part("textures");
    return last && FileStamp::of(changedFile(*last)) != last->before;
}

fileString ImportFiles::library(const fileString& stem, bool isProprietary)
{
    const PathUtils& paths = PathUtils::getObject();
    const fileString folder =
        isProprietary ? paths.getManufacturerLibraryPath() : paths.getUserLibraryDatabasePath();
    return folder + stem + fileString(".orvlib");
}

fileString ImportFiles::textures(const fileString& stem, bool isProprietary)
{
    return LibraryImport::getArchivedTexturePath(library(stem, isProprietary), isProprietary);
}

std::vector<ImportEntry> ImportRecord::read(const fileString& folder)
{
    const fileString path = recordIn(folder);
    if (!path.pathExists())
        return {};
    const QByteArray text = QByteArray::fromStdString(TextFile::read(path));
    const QJsonValue imports = QJsonDocument::fromJson(text).object()["imports"];
    if (!imports.isArray())
        throw Unreadable(path.toNativeString() + ": is no record of imports");
    std::vector<ImportEntry> entries;
    for (const QJsonValue& value : imports.toArray()) {
        ImportEntry entry;
        if (!readEntry(value.toObject(), entry))
            throw Unreadable(path.toNativeString() + ": is no record of imports");
        entries.push_back(std::move(entry));
    }
    return entries;
}

void ImportRecord::setAside(const fileString& folder)
{
    const fileString path = recordIn(folder);
    FileUtils::renameFile(path, path + fileString(".unreadable"));
}

void ImportRecord::write(const fileString& folder, const std::vector<ImportEntry>& entries)
{
    QJsonArray imports;
    for (const ImportEntry& entry : entries)
        imports.append(document(entry));
    TextFile::write(recordIn(folder),
                    QJsonDocument(QJsonObject{{"imports", imports}}).toJson().toStdString());
}

} // namespace OrvHost
