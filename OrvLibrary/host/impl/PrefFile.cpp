#include "OrvLibrary/host/impl/PrefFile_p.h"

#include <cerrno>
#include <cstring>
#include <limits>

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>

#include "OrvLibrary/host/impl/FileLock_p.h"

namespace {

struct Content
{
    QByteArray bytes;
    QJsonObject members;
    bool isReadable = true; ///< absent, empty or a JSON object
};

QString fileName(const std::string& path)
{
    return QFile::decodeName(path.c_str());
}

Content readContent(const std::string& path)
{
    Content content;
    QFile file(fileName(path));
    if (!file.open(QIODevice::ReadOnly))
        return content;
    content.bytes = file.readAll();
    const QJsonDocument document = QJsonDocument::fromJson(content.bytes);
    content.members = document.object();
    content.isReadable = content.bytes.isEmpty() || document.isObject();
    return content;
}

QJsonValue toJson(const PrefValue& value)
{
    if (const auto* const text = std::get_if<std::string>(&value))
        return QString::fromStdString(*text);
    if (const auto* const flag = std::get_if<bool>(&value))
        return *flag;
    if (const auto* const number = std::get_if<int>(&value))
        return *number;
    return std::get<double>(value);
}

} // namespace

PrefFile::PrefFile(const fileString& path) : mPath(path.toNativeString()) {}

QJsonObject PrefFile::read() const
{
    return readContent(mPath).members;
}

std::optional<PrefValue> PrefFile::value(const QJsonObject& members, int id)
{
    const QVariant value = members.value(QString::number(id)).toVariant();
    switch (value.type()) {
    case QVariant::Bool:
        return value.toBool();
    case QVariant::String:
        return value.toString().toStdString();
    case QVariant::Double:
        return value.toDouble();
    case QVariant::LongLong: {
        const qint64 number = value.toLongLong();
        const bool fits =
            number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
        return fits ? PrefValue(static_cast<int>(number)) : PrefValue(static_cast<double>(number));
    }
    default:
        return std::nullopt;
    }
}

std::optional<QJsonObject> PrefFile::update(const std::map<int, PrefValue>& values, std::string& reason) const
{
    if (!makeFolder(reason))
        return std::nullopt;
    const FileLock lock(mPath);
    if (!lock.isHeld()) {
        reason = mPath + ": " + lock.reason();
        return std::nullopt;
    }
    const Content content = readContent(mPath);
    if (!content.isReadable && !replace(mPath + ".bad", content.bytes, reason))
        return std::nullopt;
    QJsonObject members = content.members;
    for (const auto& [id, value] : values)
        members.insert(QString::number(id), toJson(value));
    if (!replace(mPath, QJsonDocument(members).toJson(), reason))
        return std::nullopt;
    return members;
}

bool PrefFile::makeFolder(std::string& reason) const
{
    const QString folder = QFileInfo(fileName(mPath)).path();
    if (QDir().mkpath(folder))
        return true;
    reason = "cannot create the folder " + QFile::encodeName(folder).toStdString();
    return false;
}

bool PrefFile::replace(const std::string& path, const QByteArray& content, std::string& reason) const
{
    QSaveFile file(fileName(path));
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush()) {
        // The save-file class syncs too, but does not tell when that fails.
        if (fsync(file.handle()) != 0) {
            reason = path + ": " + std::strerror(errno);
            file.cancelWriting();
            file.commit();
            return false;
        }
        if (file.commit())
            return true;
    }
    reason = path + ": " + file.errorString().toStdString();
    return false;
}
