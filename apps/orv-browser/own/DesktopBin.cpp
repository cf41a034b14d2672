// A note is complete before its file moves, so a kill leaves at most a note for a file that is still in its
// place. Qt's own move to the bin is not used: if it cannot make the note, because the disk is full or the
// name is long, it tries for ever.
#include "apps/orv-browser/own/DesktopBin.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStorageInfo>

namespace {

/// The bytes of the longest file name that file systems usually take.
constexpr int kMostBytes = 255;

struct Bin
{
    QByteArray folder; ///< empty if there is none
    QByteArray place;  ///< of the file, as a note names it
};

QByteArray noteName(const QByteArray& name)
{
    return name + ".trashinfo";
}

bool isTaken(const QByteArray& path)
{
    struct stat about = {};
    return lstat(path.constData(), &about) == 0;
}

std::optional<struct stat> folderAt(const QByteArray& path)
{
    struct stat about = {};
    if (lstat(path.constData(), &about) != 0 || !S_ISDIR(about.st_mode))
        return std::nullopt;
    return about;
}

/// A folder for this user only, which is made if it is missing.
bool hasFolder(const QByteArray& path)
{
    return mkdir(path.constData(), 0700) == 0 || QFileInfo(QFile::decodeName(path)).isDir();
}

/// The same, for a folder in a place where other users can make theirs: neither a link nor a folder of
/// theirs.
bool hasOwnFolder(const QByteArray& path)
{
    mkdir(path.constData(), 0700);
    const std::optional<struct stat> about = folderAt(path);
    return about && about->st_uid == getuid();
}

/// The bin at the top of a disk, or nothing.
QByteArray binAtTop(const QByteArray& top)
{
    const QByteArray user = QByteArray::number(getuid());
    const QByteArray shared = top + "/.Trash";
    const std::optional<struct stat> about = folderAt(shared);
    if (about && (about->st_mode & S_ISVTX) != 0 && hasOwnFolder(shared + "/" + user))
        return shared + "/" + user;
    const QByteArray own = top + "/.Trash-" + user;
    return hasOwnFolder(own) ? own : QByteArray();
}

Bin binFor(const QByteArray& path)
{
    const QByteArray data =
        QFile::encodeName(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    struct stat file = {};
    struct stat home = {};
    if (lstat(path.constData(), &file) != 0 || data.isEmpty() || !QDir().mkpath(QFile::decodeName(data)) ||
        stat(data.constData(), &home) != 0)
        return {};
    if (file.st_dev == home.st_dev)
        return {data + "/Trash", path};
    const QFileInfo info(QFile::decodeName(path));
    const QDir top(QStorageInfo(info.canonicalPath()).rootPath());
    const QString whole = info.canonicalPath() + QLatin1Char('/') + info.fileName();
    return {binAtTop(QFile::encodeName(top.path())), QFile::encodeName(top.relativeFilePath(whole))};
}

/// The name of the n-th file of this name in the bin, short enough for the name of its note.
QByteArray nthName(const QByteArray& name, int n)
{
    const QFileInfo parts(QFile::decodeName(name));
    const QByteArray ending =
        parts.suffix().isEmpty() ? QByteArray() : "." + QFile::encodeName(parts.suffix());
    const QByteArray number = n == 1 ? QByteArray() : "." + QByteArray::number(n);
    QByteArray stem = name.chopped(ending.size());
    int size = std::min(stem.size(), kMostBytes - noteName(number + ending).size());
    while (size < stem.size() && size > 0 && (stem[size] & 0xC0) == 0x80)
        --size; // no character is cut
    stem.truncate(size);
    return stem + number + ending;
}

/// Writes the note for a file of this place.
/// @return false if it cannot be written completely; then there is none
bool writeNote(const QByteArray& note, const QByteArray& place)
{
    QFile file(QFile::decodeName(note));
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    const QString now = QDateTime::currentDateTime().toString(Qt::ISODate);
    const QByteArray text =
        "[Trash Info]\nPath=" + place.toPercentEncoding("/") + "\nDeletionDate=" + now.toLatin1() + "\n";
    if (file.write(text) == text.size() && file.flush())
        return true;
    unlink(note.constData()); // QFile::remove() keeps a file that it could not flush
    return false;
}

} // namespace

fileString DesktopBin::take(const fileString& path)
{
    const QFileInfo info(QFile::decodeName(path.toNativeString().c_str()));
    const QByteArray from = QFile::encodeName(info.absoluteFilePath());
    const Bin bin = binFor(from);
    const QByteArray files = bin.folder + "/files/";
    const QByteArray notes = bin.folder + "/info/";
    if (bin.folder.isEmpty() || !hasFolder(bin.folder) || !hasFolder(files) || !hasFolder(notes))
        return {};
    for (int n = 1;; ++n) {
        const QByteArray name = nthName(QFile::encodeName(info.fileName()), n);
        const QByteArray note = notes + noteName(name);
        if (isTaken(files + name))
            continue;
        if (!writeNote(note, bin.place)) {
            if (isTaken(note))
                continue;
            return {};
        }
        if (std::rename(from.constData(), (files + name).constData()) == 0)
            return fileString((files + name).toStdString());
        unlink(note.constData());
        return {};
    }
}

void DesktopBin::removeNote(const fileString& inBin)
{
    const QFileInfo file(QFile::decodeName(inBin.toNativeString().c_str()));
    const QByteArray name = QFile::encodeName(file.fileName());
    QFile::remove(file.absolutePath() + QStringLiteral("/../info/") + QFile::decodeName(noteName(name)));
}
