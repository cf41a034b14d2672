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
        std::optional<long long> parent; ///< none at the top
        std::string name;
    };
    struct Item
    {
        long long id = -1;
        long long folder = -1;
        std::string name;
        std::string paneName;
        std::optional<long> style;
        std::optional<long> manufacturer;
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

    /// What the catalog says of itself under a key such as "id" or "version"; empty when it says nothing.
    std::string value(const QString& key) const;
    /// All folders, in no order.
    std::vector<Folder> folders() const;
    /// Calls for every item, in the order of their ids.
    void forEachItem(const std::function<void(const Item&)>& call) const;
    Details details(long long item) const;

    /// Copies an item of another catalog, or of the same one, into a folder of a catalog that is the user's.
    /// The number of the manufacturer goes along as it is.
    /// @param folder -1 for the first folder at the top, which is made where there is none
    /// @return the id of the copy
    /// @throws std::runtime_error when either catalog or the item cannot be read, or the copy not be written;
    /// nothing has changed then
    static long long copyItem(const fileString& from, long long item, const fileString& to, long long folder);
    /// Removes items of a catalog that is the user's: all of them, or none when it fails.
    /// @throws std::runtime_error
    static void removeItems(const fileString& database, const std::vector<long long>& items);

private:
    CatalogDatabase(const fileString& path, const QString& options);

    QString mConnection;
    QSqlDatabase mDatabase;
};
