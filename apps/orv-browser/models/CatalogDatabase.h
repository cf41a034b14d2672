#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QByteArray>
#include <QSqlDatabase>

#include "OrvLibrary/host/fileString.h"

/// One catalog database, open for reading unless it says otherwise; docs/formats/catalog-database.md
/// describes it. Every failure of the database is thrown as std::runtime_error with a reason for people. An
/// object is used on the thread that made it.
class CatalogDatabase
{
public:
    struct Folder
    {
        long long id = -1;
        std::string name;
    };
    struct Item
    {
        long long id = -1;
        std::string name;
        std::string paneName;
    };
    struct Details
    {
        std::optional<long> style;
        std::optional<long> manufacturer;
        QByteArray picture; ///< PNG; empty when there is none
    };

    /// @throws std::runtime_error when the file is missing, locked or no catalog
    explicit CatalogDatabase(const fileString& path);
    ~CatalogDatabase();
    CatalogDatabase(const CatalogDatabase&) = delete;
    CatalogDatabase& operator=(const CatalogDatabase&) = delete;

    /// The library database id; empty when the catalog has none.
    std::string id() const;
    /// Folders of a folder, or those at the top; in no order.
    std::vector<Folder> folders(std::optional<long long> parent) const;
    /// Items of a folder; in no order.
    std::vector<Item> items(long long folder) const;
    /// Items whose name holds every term, without regard to letter case, at most `limit`.
    /// @param isCancelled asked between rows
    std::vector<Item> search(const std::vector<std::string>& terms, int limit,
                             const std::function<bool()>& isCancelled) const;
    Details details(long long item) const;

    /// Copies an item of another catalog, or of the same one, into a folder of a catalog that is the user's.
    /// The number of the manufacturer goes along as it is.
    /// @throws std::runtime_error when either catalog or the item cannot be read, or the copy not be written;
    /// nothing has changed then
    static void copyItem(const fileString& from, long long item, const fileString& to, long long folder);

private:
    CatalogDatabase(const fileString& path, const QString& options);

    QString mConnection;
    QSqlDatabase mDatabase;
};
