#include "apps/orv-browser/models/CatalogDatabase.h"

#include <atomic>
#include <stdexcept>

#include <QCoreApplication>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace {

constexpr int kBusyMilliseconds = 200;

[[noreturn]] void fail(const QSqlError& error)
{
    throw std::runtime_error(error.databaseText().isEmpty() ? error.text().toStdString()
                                                            : error.databaseText().toStdString());
}

/// Connections are named, and no two threads may share one.
QString freshConnectionName()
{
    static std::atomic<int> next{0};
    return QStringLiteral("catalog-%1").arg(++next);
}

QSqlQuery run(const QSqlDatabase& database, const QString& statement, const QVariantList& values = {})
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.prepare(statement))
        fail(query.lastError());
    for (const QVariant& value : values)
        query.addBindValue(value);
    if (!query.exec())
        fail(query.lastError());
    return query;
}

std::optional<long> number(const QVariant& value)
{
    return value.isNull() ? std::nullopt : std::optional<long>(static_cast<long>(value.toLongLong()));
}

long long firstFolder(const QSqlDatabase& database)
{
    QSqlQuery query =
        run(database, QStringLiteral("SELECT id FROM folder WHERE parent IS NULL ORDER BY id LIMIT 1"));
    if (query.next())
        return query.value(0).toLongLong();
    return run(database, QStringLiteral("INSERT INTO folder (parent, name) VALUES (NULL, ?)"),
               {QCoreApplication::translate("CatalogDatabase", "Items")})
        .lastInsertId()
        .toLongLong();
}

} // namespace

CatalogDatabase::CatalogDatabase(const fileString& path)
    : CatalogDatabase(path, QStringLiteral("QSQLITE_OPEN_READONLY;"))
{
}

CatalogDatabase::CatalogDatabase(const fileString& path, const QString& options)
    : mConnection(freshConnectionName())
{
    mDatabase = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), mConnection);
    mDatabase.setDatabaseName(QFile::decodeName(path.toNativeString().c_str()));
    mDatabase.setConnectOptions(options + QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(kBusyMilliseconds));
    if (!mDatabase.open()) {
        const QSqlError error = mDatabase.lastError();
        mDatabase = QSqlDatabase();
        QSqlDatabase::removeDatabase(mConnection);
        fail(error);
    }
}

CatalogDatabase::~CatalogDatabase()
{
    mDatabase.close();
    mDatabase = QSqlDatabase();
    QSqlDatabase::removeDatabase(mConnection);
}

long long CatalogDatabase::copyItem(const fileString& from, long long item, const fileString& to,
                                    long long folder)
{
    QVariantList values{QVariant()};
    {
        const CatalogDatabase source(from);
        QSqlQuery query = run(source.mDatabase,
                              QStringLiteral("SELECT name, pane_name, style, manufacturer, picture, geometry "
                                             "FROM item WHERE id = ?"),
                              {item});
        if (!query.next())
            throw std::runtime_error("no such item");
        for (int column = 0; column < query.record().count(); ++column)
            values << query.value(column);
    }
    const CatalogDatabase target(to, QString());
    values[0] = folder < 0 ? firstFolder(target.mDatabase) : folder;
    const QSqlQuery inserted = run(
        target.mDatabase,
        QStringLiteral("INSERT INTO item (folder, name, pane_name, style, manufacturer, picture, geometry) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?)"),
        values);
    return inserted.lastInsertId().toLongLong();
}

void CatalogDatabase::removeItems(const fileString& database, const std::vector<long long>& items)
{
    CatalogDatabase target(database, QString());
    if (!target.mDatabase.transaction())
        fail(target.mDatabase.lastError());
    for (const long long item : items)
        run(target.mDatabase, QStringLiteral("DELETE FROM item WHERE id = ?"), {item});
    if (!target.mDatabase.commit())
        fail(target.mDatabase.lastError());
}

std::string CatalogDatabase::value(const QString& key) const
{
    QSqlQuery query = run(mDatabase, QStringLiteral("SELECT value FROM catalog WHERE key = ?"), {key});
    return query.next() ? query.value(0).toString().toStdString() : std::string();
}

std::vector<CatalogDatabase::Folder> CatalogDatabase::folders() const
{
    QSqlQuery query = run(mDatabase, QStringLiteral("SELECT id, parent, name FROM folder"));
    std::vector<Folder> folders;
    while (query.next()) {
        Folder folder;
        folder.id = query.value(0).toLongLong();
        if (!query.value(1).isNull())
            folder.parent = query.value(1).toLongLong();
        folder.name = query.value(2).toString().toStdString();
        folders.push_back(folder);
    }
    return folders;
}

void CatalogDatabase::forEachItem(const std::function<void(const Item&)>& call) const
{
    QSqlQuery query =
        run(mDatabase,
            QStringLiteral("SELECT id, folder, name, pane_name, style, manufacturer FROM item ORDER BY id"));
    Item item;
    while (query.next()) {
        item.id = query.value(0).toLongLong();
        item.folder = query.value(1).toLongLong();
        item.name = query.value(2).toString().toStdString();
        item.paneName = query.value(3).toString().toStdString();
        item.style = number(query.value(4));
        item.manufacturer = number(query.value(5));
        call(item);
    }
    if (query.lastError().isValid())
        fail(query.lastError());
}

CatalogDatabase::Details CatalogDatabase::details(long long item) const
{
    QSqlQuery query =
        run(mDatabase, QStringLiteral("SELECT style, manufacturer, picture FROM item WHERE id = ?"), {item});
    if (!query.next())
        return {};
    return {number(query.value(0)), number(query.value(1)), query.value(2).toByteArray()};
}
