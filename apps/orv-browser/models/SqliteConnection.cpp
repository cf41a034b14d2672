#include "apps/orv-browser/models/SqliteConnection.h"

#include <atomic>
#include <stdexcept>

#include <QFile>
#include <QSqlError>
#include <QVariant>

namespace {

[[noreturn]] void fail(const QSqlError& error)
{
    throw std::runtime_error(error.databaseText().isEmpty() ? error.text().toStdString()
                                                            : error.databaseText().toStdString());
}

/// Connections are named, and no two threads may share one.
QString freshName()
{
    static std::atomic<int> next{0};
    return QStringLiteral("catalog-%1").arg(++next);
}

} // namespace

SqliteConnection::SqliteConnection(const fileString& path, Access access, int patience) : mName(freshName())
{
    mDatabase = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), mName);
    mDatabase.setDatabaseName(QFile::decodeName(path.toNativeString().c_str()));
    const QString readOnly = access == Access::Read ? QStringLiteral("QSQLITE_OPEN_READONLY;") : QString();
    mDatabase.setConnectOptions(readOnly + QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(patience));
    if (!mDatabase.open()) {
        const QSqlError error = mDatabase.lastError();
        mDatabase = QSqlDatabase();
        QSqlDatabase::removeDatabase(mName);
        fail(error);
    }
}

SqliteConnection::~SqliteConnection()
{
    mDatabase.close();
    mDatabase = QSqlDatabase();
    QSqlDatabase::removeDatabase(mName);
}

QSqlQuery SqliteConnection::run(const QString& statement, const QVariantList& values) const
{
    QSqlQuery query(mDatabase);
    query.setForwardOnly(true);
    if (!query.prepare(statement))
        fail(query.lastError());
    for (const QVariant& value : values)
        query.addBindValue(value);
    if (!query.exec())
        fail(query.lastError());
    return query;
}

QVariant SqliteConnection::value(const QString& statement, const QVariantList& values) const
{
    QSqlQuery query = run(statement, values);
    const bool hasRow = query.next();
    expectSound(query);
    return hasRow ? query.value(0) : QVariant();
}

void SqliteConnection::expectSound(const QSqlQuery& query)
{
    if (query.lastError().isValid())
        fail(query.lastError());
}
