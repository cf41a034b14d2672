#include "OrvHost/history/CatalogItems.h"

#include <atomic>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

namespace OrvHost {

namespace {

/// The address of a database that does not change while it is open. A path may have any bytes, so they are
/// escaped.
QString addressOf(const fileString& path)
{
    const QByteArray bytes = QByteArray::fromStdString(path.toNativeString());
    return QStringLiteral("file:") + QString::fromLatin1(bytes.toPercentEncoding("/")) +
           QStringLiteral("?immutable=1");
}

/// An open catalog with its own connection, which is closed at the end of the block.
class Connection
{
public:
    explicit Connection(const fileString& catalog)
    {
        static std::atomic<int> next{0};
        mName = QStringLiteral("orv-host-items-%1").arg(++next);
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), mName);
        database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_OPEN_URI"));
        database.setDatabaseName(addressOf(catalog));
        mIsOpen = database.open();
    }
    ~Connection() { QSqlDatabase::removeDatabase(mName); } // closes it, too
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool isOpen() const { return mIsOpen; }
    QSqlDatabase database() const { return QSqlDatabase::database(mName); }

private:
    QString mName;
    bool mIsOpen = false;
};

QStringList columnsOf(const QSqlDatabase& database, const QString& schema)
{
    QStringList columns;
    QSqlQuery query(database);
    query.exec(QStringLiteral("PRAGMA %1.table_info(item)").arg(schema));
    while (query.next())
        columns.append(query.value(1).toString());
    return columns;
}

/// The SQL condition that tells whether item "n" differs from item "o".
QString difference(const QSqlDatabase& database)
{
    const QStringList former = columnsOf(database, QStringLiteral("former"));
    QStringList terms{QStringLiteral("0")};
    for (QString column : columnsOf(database, QStringLiteral("main"))) {
        if (!former.contains(column))
            continue;
        column.replace('"', QStringLiteral("\"\""));
        terms.append(QStringLiteral("n.\"%1\" IS NOT o.\"%1\"").arg(column));
    }
    return terms.join(QStringLiteral(" OR "));
}

bool read(const QSqlDatabase& database, const QString& statement, std::vector<CatalogItems::Item>& items)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.exec(statement))
        return false;
    while (query.next())
        items.push_back({query.value(0).toLongLong(), query.value(1).toString().toStdString()});
    return !query.lastError().isValid();
}

bool attach(const QSqlDatabase& database, const fileString& former)
{
    QSqlQuery query(database);
    query.prepare(QStringLiteral("ATTACH ? AS former"));
    query.addBindValue(addressOf(former));
    return query.exec();
}

} // namespace

std::optional<std::int64_t> CatalogItems::count(const fileString& catalog)
{
    const Connection connection(catalog);
    if (!connection.isOpen())
        return {};
    QSqlQuery query(connection.database());
    if (!query.exec(QStringLiteral("SELECT count(*) FROM item")) || !query.next())
        return {};
    return query.value(0).toLongLong();
}

std::optional<CatalogItems::Changes> CatalogItems::compare(const fileString& former,
                                                           const fileString& current)
{
    const Connection connection(current);
    if (!connection.isOpen())
        return {};
    const QSqlDatabase database = connection.database();
    Changes changes;
    if (former.empty())
        return read(database, QStringLiteral("SELECT id, name FROM item ORDER BY id"), changes.added)
                   ? std::optional<Changes>(changes)
                   : std::nullopt;
    const QString missing =
        QStringLiteral("SELECT id, name FROM %1.item WHERE id NOT IN (SELECT id FROM %2.item) ORDER BY id");
    const QString changed =
        QStringLiteral("SELECT n.id, n.name FROM main.item n JOIN former.item o ON o.id = n.id "
                       "WHERE %1 ORDER BY n.id");
    if (!attach(database, former) ||
        !read(database, missing.arg(QStringLiteral("main"), QStringLiteral("former")), changes.added) ||
        !read(database, missing.arg(QStringLiteral("former"), QStringLiteral("main")), changes.gone) ||
        !read(database, changed.arg(difference(database)), changes.changed))
        return {};
    return changes;
}

} // namespace OrvHost
