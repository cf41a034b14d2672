#include "OrvLibrary/host/impl/services/PrefFile_p.h"

#include <cerrno>
#include <cstring>
#include <limits>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"

namespace {

constexpr mode_t kNewMode = 0666; // without the bits of the process's umask

struct Content
{
    QByteArray bytes;
    QJsonObject members;
    bool isReadable = true; ///< false if the file exists and is not a JSON object
};

QString fileName(const std::string& path)
{
    return QFile::decodeName(path.c_str());
}

/// @return empty if the file exists but cannot be read; `errno` has the reason
std::optional<Content> readContent(const std::string& path)
{
    Content content;
    QFile file(fileName(path));
    if (!host::fileStatus(path) && errno == ENOENT)
        return content;
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    content.bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
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

bool write(host::ReplacementFile& file, const QByteArray& bytes)
{
    QFile stream;
    return stream.open(file.descriptor(), QIODevice::WriteOnly | QIODevice::Unbuffered) &&
           stream.write(bytes) == bytes.size() && file.commit();
}

std::nullopt_t failed(const std::string& path, std::string& reason)
{
    reason = path + ": " + std::strerror(errno);
    return std::nullopt;
}

} // namespace

PrefFile::PrefFile(const fileString& path, std::chrono::milliseconds lockWait)
    : mPath(path.toNativeString()), mLockWait(lockWait)
{
}

QJsonObject PrefFile::read() const
{
    const auto content = readContent(mPath);
    return content ? content->members : QJsonObject();
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
    using host::ReplacementFile;
    const auto file = ReplacementFile::open(mPath, ReplacementFile::Mode::Locked, kNewMode, mLockWait);
    if (!file)
        return failed(mPath, reason);
    // A file that cannot be read may still be intact, so it is not overwritten.
    const auto content = readContent(mPath);
    if (!content)
        return failed(mPath, reason);
    if (!content->isReadable && !writeBadCopy(content->bytes, reason))
        return std::nullopt;
    QJsonObject members = content->members;
    for (const auto& [id, value] : values)
        members.insert(QString::number(id), toJson(value));
    if (!write(*file, QJsonDocument(members).toJson()))
        return failed(mPath, reason);
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

bool PrefFile::writeBadCopy(const QByteArray& bytes, std::string& reason) const
{
    using host::ReplacementFile;
    const std::string path = mPath + ".bad";
    const auto file = ReplacementFile::open(path, ReplacementFile::Mode::Replaced, kNewMode, mLockWait);
    if (file && write(*file, bytes))
        return true;
    failed(path, reason);
    return false;
}
