#include "OrvHost/history/CatalogItems.h"

#include <atomic>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QUrl>
#include <QVariant>

namespace OrvHost {

namespace {

/// The address of a file that nobody changes while it is open. A byte of any value can stand in a path.
QString addressOf(const fileString& path)
{
    const QByteArray bytes = QByteArray::fromStdString(path.toNativeString());
    return QStringLiteral("file:") + QString::fromLatin1(bytes.toPercentEncoding("/")) +
           QStringLiteral("?immutable=1");
}

/// One open catalog with a connection of its own, which is gone at the end of the block.
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
    ~Connection()
    {
        database().close();
        QSqlDatabase::removeDatabase(mName);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool isOpen() const { return mIsOpen; }
    QSqlDatabase database() const { return QSqlDatabase::database(mName, false); }

private:
    QString mName;
    bool mIsOpen = false;
};

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

} // namespace OrvHost
