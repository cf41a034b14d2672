#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariantList>

#include "OrvLibrary/host/fileString.h"

/// One connection to one database file. Every failure of the database is thrown as std::runtime_error with a
/// reason for people. An object is used on the thread that made it.
class SqliteConnection
{
public:
    enum class Access
    {
        Read,
        Write ///< also makes a file that is missing
    };

    /// @param patience how long to wait for a database that another program has locked, in milliseconds
    /// @throws std::runtime_error when the file cannot be opened
    SqliteConnection(const fileString& path, Access access, int patience);
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    /// Runs one statement.
    /// @param values for its question marks, in their order
    /// @throws std::runtime_error
    QSqlQuery run(const QString& statement, const QVariantList& values = {}) const;
    /// The first value of the first row; not valid when there is none.
    /// @throws std::runtime_error
    QVariant value(const QString& statement, const QVariantList& values = {}) const;
    /// @throws std::runtime_error with what the query failed of, when it failed on its way
    static void expectSound(const QSqlQuery& query);

private:
    QString mName;
    QSqlDatabase mDatabase;
};
