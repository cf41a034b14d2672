// How it works: every change is made by `LibraryCopy::change` on a copy of the database, in one transaction.
// Items that are taken out go, with all their columns, into a small database beside it (`KeptItems`), which
// is attached for the time of the statement; putting back copies them home from there. An id or a folder that
// is not free any more is replaced, so that nothing of the library is overwritten.
#include "apps/orv-browser/own/OwnCatalog.h"

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>

#include <QCoreApplication>
#include <QFile>
#include <QSqlRecord>
#include <QUuid>
#include <QVariant>

#include "OrvLibrary/host/FileUtils.h"
#include "apps/orv-browser/models/SqliteConnection.h"
#include "apps/orv-browser/own/LibraryCopy.h"
#include "apps/orv-browser/own/LibraryName.h"

namespace {

constexpr int kPatience = 200; // milliseconds that another program may keep a catalog locked

const char* const kTables[] = {
    "CREATE TABLE catalog (key TEXT PRIMARY KEY, value TEXT NOT NULL)",
    "CREATE TABLE folder (id INTEGER PRIMARY KEY, parent INTEGER REFERENCES folder, name TEXT NOT NULL)",
    "CREATE TABLE item (id INTEGER PRIMARY KEY, folder INTEGER NOT NULL REFERENCES folder, "
    "name TEXT NOT NULL, pane_name TEXT NOT NULL, style INTEGER, manufacturer INTEGER, picture BLOB, "
    "geometry BLOB)",
    "CREATE INDEX folder_parent ON folder (parent)",
    "CREATE INDEX item_folder ON item (folder)",
};

const char* const kFirstFolder = "SELECT id FROM folder WHERE parent IS NULL ORDER BY id LIMIT 1";

[[noreturn]] void fail(const QString& reason)
{
    throw std::runtime_error(reason.toStdString());
}

QString translated(const char* text)
{
    return QCoreApplication::translate("OwnCatalog", text);
}

QString textOf(const fileString& path)
{
    return QFile::decodeName(path.toNativeString().c_str());
}

void inTransaction(const SqliteConnection& database, const std::function<void()>& act)
{
    database.run(QStringLiteral("BEGIN"));
    act();
    database.run(QStringLiteral("COMMIT"));
}

long long firstFolder(const SqliteConnection& database)
{
    const QVariant found = database.value(QLatin1String(kFirstFolder));
    if (found.isValid())
        return found.toLongLong();
    return database
        .run(QStringLiteral("INSERT INTO folder (parent, name) VALUES (NULL, ?)"),
             {translated(QT_TRANSLATE_NOOP("OwnCatalog", "Items"))})
        .lastInsertId()
        .toLongLong();
}

/// The columns of an item that are copied to another library, behind the folder.
QVariantList readItem(const SqliteConnection& source, long long item)
{
    QSqlQuery query = source.run(QStringLiteral("SELECT name, pane_name, style, manufacturer, picture, "
                                                "geometry FROM item WHERE id = ?"),
                                 {item});
    if (!query.next())
        fail(translated(QT_TRANSLATE_NOOP("OwnCatalog", "an item is gone")));
    QVariantList values;
    for (int column = 0; column < query.record().count(); ++column)
        values << query.value(column);
    return values;
}

void attach(const SqliteConnection& copy, const fileString& kept)
{
    copy.run(QStringLiteral("ATTACH ? AS kept"), {textOf(kept)});
    copy.run(QStringLiteral("PRAGMA kept.journal_mode = MEMORY")); // so that a kill leaves no file beside it
}

/// The names of the columns of the items, some of which another program may have added.
QString columnsOf(const SqliteConnection& database, const QString& schema)
{
    QSqlQuery query = database.run(QStringLiteral("PRAGMA %1.table_info(item)").arg(schema));
    QStringList names;
    while (query.next())
        names << QLatin1Char('"') + query.value(1).toString().replace('"', QLatin1String("\"\"")) +
                     QLatin1Char('"');
    return names.join(QLatin1Char(','));
}

} // namespace

OwnCatalog::KeptItems::KeptItems(std::vector<long long> chosen)
    : ids(std::move(chosen)), file(LibraryCopy::temporaryFile()), mGuard(file)
{
}

void OwnCatalog::create(const fileString& database)
{
    const fileString copy = LibraryCopy::temporaryFile();
    const FileReaper guard(copy);
    LibraryCopy::write(copy, [&](const SqliteConnection& fresh) {
        inTransaction(fresh, [&] {
            for (const char* const table : kTables)
                fresh.run(QLatin1String(table));
            const auto add = [&](const char* key, const QString& value) {
                fresh.run(QStringLiteral("INSERT INTO catalog VALUES (?, ?)"), {QLatin1String(key), value});
            };
            add("id", QUuid::createUuid().toString(QUuid::WithoutBraces));
            add("name", LibraryName::nameOf(database));
            add("version", QStringLiteral("1"));
        });
    });
    if (!FileUtils::copyFile(copy, database, false))
        fail(translated(QT_TRANSLATE_NOOP("OwnCatalog", "the library cannot be written")));
}

std::vector<long long> OwnCatalog::copyItems(const fileString& database, long long folder,
                                             const std::vector<ItemDrag::Item>& items)
{
    std::vector<long long> ids;
    LibraryCopy::change(database, [&](const SqliteConnection& copy) {
        ids.clear();
        std::map<fileString, std::unique_ptr<SqliteConnection>> sources;
        inTransaction(copy, [&] {
            const bool hasFolder =
                copy.value(QStringLiteral("SELECT id FROM folder WHERE id = ?"), {folder}).isValid();
            const long long target = hasFolder ? folder : firstFolder(copy);
            for (const ItemDrag::Item& item : items) {
                std::unique_ptr<SqliteConnection>& source = sources[item.database];
                if (!source)
                    source = std::make_unique<SqliteConnection>(item.database, SqliteConnection::Access::Read,
                                                                kPatience);
                const QSqlQuery inserted =
                    copy.run(QStringLiteral("INSERT INTO item (folder, name, pane_name, style, manufacturer, "
                                            "picture, geometry) VALUES (?, ?, ?, ?, ?, ?, ?)"),
                             QVariantList{target} + readItem(*source, item.id));
                ids.push_back(inserted.lastInsertId().toLongLong());
            }
        });
    });
    return ids;
}

void OwnCatalog::takeOut(const fileString& database, KeptItems& items)
{
    LibraryCopy::change(database, [&](const SqliteConnection& copy) {
        FileUtils::removePath(items.file, 1); // of an attempt before
        attach(copy, items.file);
        inTransaction(copy, [&] {
            copy.run(QStringLiteral("CREATE TEMP TABLE chosen (id INTEGER PRIMARY KEY)"));
            for (const long long id : items.ids)
                copy.run(QStringLiteral("INSERT OR IGNORE INTO chosen VALUES (?)"), {id});
            copy.run(QStringLiteral("CREATE TABLE kept.item AS SELECT * FROM main.item "
                                    "WHERE id IN (SELECT id FROM chosen)"));
            copy.run(QStringLiteral("DELETE FROM main.item WHERE id IN (SELECT id FROM chosen)"));
            if (copy.value(QStringLiteral("SELECT COUNT(*) FROM kept.item")).toInt() == 0)
                fail(translated(QT_TRANSLATE_NOOP("OwnCatalog", "the items are gone already")));
        });
    });
}

void OwnCatalog::putBack(const fileString& database, KeptItems& items)
{
    LibraryCopy::change(database, [&](const SqliteConnection& copy) {
        items.ids.clear();
        attach(copy, items.file);
        const QString columns = columnsOf(copy, QStringLiteral("kept"));
        inTransaction(copy, [&] {
            copy.run(QStringLiteral(
                "UPDATE kept.item SET id = rowid + (SELECT MAX(id) FROM (SELECT id FROM main.item UNION ALL "
                "SELECT id FROM kept.item)) WHERE id IN (SELECT id FROM main.item)"));
            if (copy.value(QStringLiteral("SELECT id FROM kept.item WHERE folder NOT IN "
                                          "(SELECT id FROM main.folder)"))
                    .isValid())
                copy.run(QStringLiteral("UPDATE kept.item SET folder = ? WHERE folder NOT IN "
                                        "(SELECT id FROM main.folder)"),
                         {firstFolder(copy)});
            copy.run(QStringLiteral("INSERT INTO main.item (%1) SELECT %1 FROM kept.item").arg(columns));
            QSqlQuery query = copy.run(QStringLiteral("SELECT id FROM kept.item"));
            while (query.next())
                items.ids.push_back(query.value(0).toLongLong());
        });
    });
}

QString OwnCatalog::rename(const fileString& database, Entry entry, long long id, const QString& name)
{
    const QString table = entry == Entry::Item ? QStringLiteral("item") : QStringLiteral("folder");
    QString former;
    LibraryCopy::change(database, [&](const SqliteConnection& copy) {
        const QVariant found =
            copy.value(QStringLiteral("SELECT name FROM %1 WHERE id = ?").arg(table), {id});
        if (!found.isValid())
            fail(translated(QT_TRANSLATE_NOOP("OwnCatalog", "it is gone already")));
        former = found.toString();
        if (entry == Entry::Item) // where the selection pane shows the same name, it goes along
            copy.run(QStringLiteral("UPDATE item SET pane_name = ? WHERE id = ? AND pane_name = name"),
                     {name, id});
        copy.run(QStringLiteral("UPDATE %1 SET name = ? WHERE id = ?").arg(table), {name, id});
    });
    return former;
}
