// SQLite itself could change the library in its place, and undo half a change when it is next opened. But the
// other programs take libraries as whole files: they pack them, and keep hard links of those that an import
// replaces. So a change makes a new file.
#include "apps/orv-browser/own/LibraryCopy.h"

#include <stdexcept>

#include <QCoreApplication>
#include <QFile>
#include <QVariant>

#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileUtils.h"
#include "apps/orv-browser/models/SqliteConnection.h"

namespace {

constexpr int kPatience = 5000; // milliseconds that another program may keep a library locked
constexpr int kMostAttempts = 5;

[[noreturn]] void fail(const char* reason)
{
    throw std::runtime_error(QCoreApplication::translate("LibraryCopy", reason).toStdString());
}

/// @return whether the copy came to its place; false when the library was changed since `version`
bool replace(const SqliteConnection& original, const QVariant& version, const fileString& copy,
             const fileString& database)
{
    original.run(QStringLiteral("BEGIN IMMEDIATE")); // nobody else writes until the end
    const bool isSame = original.value(QStringLiteral("PRAGMA data_version")) == version;
    const bool isReplaced = isSame && FileUtils::copyFile(copy, database, true);
    original.run(QStringLiteral("ROLLBACK"));
    if (isSame && !isReplaced)
        fail(QT_TRANSLATE_NOOP("LibraryCopy", "the library cannot be written"));
    return isReplaced;
}

} // namespace

void LibraryCopy::change(const fileString& database, const Change& change)
{
    if (!database.pathExists()) // opening would make it
        fail(QT_TRANSLATE_NOOP("LibraryCopy", "the library is gone"));
    const SqliteConnection original(database, SqliteConnection::Access::Write, kPatience);
    original.run(QStringLiteral("PRAGMA journal_mode = DELETE")); // so that all of it stands in one file
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        const fileString copy = temporaryFile();
        const FileReaper guard(copy);
        const QVariant version = original.value(QStringLiteral("PRAGMA data_version"));
        original.run(QStringLiteral("VACUUM INTO ?"), {QFile::decodeName(copy.toNativeString().c_str())});
        write(copy, change);
        if (replace(original, version, copy, database))
            return;
    }
    fail(QT_TRANSLATE_NOOP("LibraryCopy", "another program keeps changing the library"));
}

void LibraryCopy::write(const fileString& copy, const Change& change)
{
    const SqliteConnection database(copy, SqliteConnection::Access::Write, kPatience);
    database.run(QStringLiteral("PRAGMA synchronous = OFF")); // it is synced when it takes its place
    database.run(QStringLiteral("PRAGMA journal_mode = MEMORY"));
    change(database);
}

fileString LibraryCopy::temporaryFile()
{
    fileString path;
    path.generateAsTempName(".orvlib");
    return path;
}
