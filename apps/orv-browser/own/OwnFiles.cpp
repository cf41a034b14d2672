// The database goes first to the bin and comes back last, and while a library is renamed its textures have
// both names; so a library that can be seen has all that belongs to it, at every instant.
#include "apps/orv-browser/own/OwnFiles.h"

#include <filesystem>
#include <memory>
#include <stdexcept>

#include <QCoreApplication>
#include <QFile>

#include "OrvLibrary/IO/LibraryImport.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileSearch.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/SHA1.h"
#include "apps/orv-browser/own/DesktopBin.h"

namespace fs = std::filesystem;

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("OwnFiles", text);
}

[[noreturn]] void fail(const QString& reason)
{
    throw std::runtime_error(reason.toStdString());
}

QString textOf(const fileString& path)
{
    return QFile::decodeName(path.toNativeString().c_str());
}

bool exists(const fileString& path)
{
    std::error_code error;
    return fs::exists(fs::symlink_status(path.toNativeString(), error));
}

/// The files of a library besides its database, whether they are there or not.
std::vector<fileString> companionsOf(const fileString& database)
{
    return {LibraryImport::getArchivedTexturePath(database, false), database + fileString(".bak")};
}

/// A second name, which a rename that was killed left, or something else of that name.
bool isSameFile(const fileString& left, const fileString& right)
{
    std::error_code error;
    if (fs::equivalent(left.toNativeString(), right.toNativeString(), error))
        return true;
    return FileUtils::fileSize(left) == FileUtils::fileSize(right) &&
           SHA1::fileContentsToSHA1Hex(left) == SHA1::fileContentsToSHA1Hex(right);
}

/// Never replaces what has that name.
void move(const fileString& from, const fileString& to)
{
    QFile file(textOf(from));
    if (!file.rename(textOf(to)))
        fail(file.errorString());
}

/// Gives a file a second name, or where the file system has none, a copy.
void addName(const fileString& from, const fileString& to)
{
    std::error_code error;
    fs::create_hard_link(from.toNativeString(), to.toNativeString(), error);
    if (error && !FileUtils::copyFile(from, to, false))
        fail(translated(QT_TRANSLATE_NOOP("OwnFiles", "%1 cannot be written")).arg(textOf(to)));
}

void forgetSearches(const fileString& path)
{
    FileSearch::get().resetFileSearch(path.parentPathWithSeparator());
}

/// For a library of which the bin takes only a part: brings that part back and fails.
[[noreturn]] void refuseWithout(const OwnFiles::Binned& files)
{
    try {
        OwnFiles::takeBack(files);
    } catch (const std::exception&) {
        fail(translated(
            QT_TRANSLATE_NOOP("OwnFiles", "only a part came to the bin, and that cannot be moved back")));
    }
    fail(translated(QT_TRANSLATE_NOOP("OwnFiles", "the bin does not take it")));
}

} // namespace

OrvHost::HostLock OwnFiles::lock(const fileString& root, const std::function<bool()>& isCancelled)
{
    const fileString folder = root / fileString("former-imports");
    if (!FileUtils::createDirectoriesWithPerm(folder, true))
        fail(translated(QT_TRANSLATE_NOOP("OwnFiles", "%1 cannot be written")).arg(textOf(folder)));
    return OrvHost::HostLock::ofImport(folder, isCancelled);
}

OwnFiles::Binned OwnFiles::moveToBin(const fileString& database)
{
    if (!exists(database))
        fail(translated(QT_TRANSLATE_NOOP("OwnFiles", "the library is gone")));
    Binned files;
    std::vector<fileString> parts = companionsOf(database);
    parts.insert(parts.begin(), database);
    for (const fileString& part : parts) {
        if (!exists(part))
            continue;
        const fileString inBin = DesktopBin::take(part);
        if (inBin.empty())
            refuseWithout(files);
        files.emplace_back(part, inBin);
        forgetSearches(part);
    }
    return files;
}

void OwnFiles::takeBack(const Binned& files)
{
    for (const auto& [path, inBin] : files) {
        if (!exists(inBin))
            fail(translated(QT_TRANSLATE_NOOP("OwnFiles", "it is not in the bin any more")));
        if (exists(path))
            fail(translated(QT_TRANSLATE_NOOP("OwnFiles", "%1 is there again")).arg(textOf(path)));
    }
    for (auto file = files.rbegin(); file != files.rend(); ++file) {
        move(file->second, file->first);
        DesktopBin::removeNote(file->second);
        forgetSearches(file->first);
    }
}

void OwnFiles::rename(const fileString& from, const fileString& to)
{
    if (!exists(from))
        fail(translated(QT_TRANSLATE_NOOP("OwnFiles", "the library is gone")));
    const std::vector<fileString> former = companionsOf(from);
    const std::vector<fileString> next = companionsOf(to);
    for (std::size_t i = 0; i < former.size(); ++i)
        if (exists(former[i]) && exists(next[i]) && !isSameFile(former[i], next[i]))
            fail(translated(QT_TRANSLATE_NOOP("OwnFiles", "%1 is there already")).arg(textOf(next[i])));
    std::vector<std::unique_ptr<FileReaper>> added; // removes the second names again unless all goes well
    for (std::size_t i = 0; i < former.size(); ++i)
        if (exists(former[i]) && !exists(next[i])) {
            addName(former[i], next[i]);
            added.push_back(std::make_unique<FileReaper>(next[i]));
        }
    move(from, to);
    for (const auto& name : added)
        name->cancel();
    for (std::size_t i = 0; i < former.size(); ++i) {
        if (exists(former[i]))
            FileUtils::removePath(former[i], 1);
        forgetSearches(former[i]);
        forgetSearches(next[i]);
    }
    forgetSearches(to);
}
