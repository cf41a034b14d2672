#include "apps/orv-browser/models/CatalogDatabase.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>

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

CatalogDatabase::Item itemOf(const QSqlQuery& query)
{
    return {query.value(0).toLongLong(), query.value(1).toString().toStdString(),
            query.value(2).toString().toStdString()};
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

void CatalogDatabase::copyItem(const fileString& from, long long item, const fileString& to, long long folder)
{
    QVariantList values{folder};
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
    run(target.mDatabase,
        QStringLiteral("INSERT INTO item (folder, name, pane_name, style, manufacturer, picture, geometry) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?)"),
        values);
}

std::string CatalogDatabase::id() const
{
    QSqlQuery query = run(mDatabase, QStringLiteral("SELECT value FROM catalog WHERE key = 'id'"));
    return query.next() ? query.value(0).toString().toStdString() : std::string();
}

std::vector<CatalogDatabase::Folder> CatalogDatabase::folders(std::optional<long long> parent) const
{
    QSqlQuery query =
        parent ? run(mDatabase, QStringLiteral("SELECT id, name FROM folder WHERE parent = ?"), {*parent})
               : run(mDatabase, QStringLiteral("SELECT id, name FROM folder WHERE parent IS NULL"));
    std::vector<Folder> folders;
    while (query.next())
        folders.push_back({query.value(0).toLongLong(), query.value(1).toString().toStdString()});
    return folders;
}

std::vector<CatalogDatabase::Item> CatalogDatabase::items(long long folder) const
{
    QSqlQuery query =
        run(mDatabase, QStringLiteral("SELECT id, name, pane_name FROM item WHERE folder = ?"), {folder});
    std::vector<Item> items;
    while (query.next())
        items.push_back(itemOf(query));
    return items;
}

std::vector<CatalogDatabase::Item> CatalogDatabase::search(const std::vector<std::string>& terms, int limit,
                                                           const std::function<bool()>& isCancelled) const
{
    QSqlQuery query = run(mDatabase, QStringLiteral("SELECT id, name, pane_name FROM item"));
    std::vector<Item> found;
    while (query.next() && static_cast<int>(found.size()) < limit && !isCancelled()) {
        const QString name = query.value(1).toString();
        const bool matches = std::all_of(terms.begin(), terms.end(), [&](const std::string& term) {
            return name.contains(QString::fromStdString(term), Qt::CaseInsensitive);
        });
        if (matches)
            found.push_back(itemOf(query));
    }
    return found;
}

CatalogDatabase::Details CatalogDatabase::details(long long item) const
{
    QSqlQuery query =
        run(mDatabase, QStringLiteral("SELECT style, manufacturer, picture FROM item WHERE id = ?"), {item});
    if (!query.next())
        return {};
    return {number(query.value(0)), number(query.value(1)), query.value(2).toByteArray()};
}
