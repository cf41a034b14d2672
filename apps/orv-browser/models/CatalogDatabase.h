#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QByteArray>

#include "apps/orv-browser/models/SqliteConnection.h"

/// One catalog database, open for reading; docs/formats/catalog-database.md
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

    /// The catalog's own value for a key such as "id" or "version"; empty if it has none.
    std::string value(const QString& key) const;
    /// All folders, in no order.
    std::vector<Folder> folders() const;
    /// Calls for every item, in the order of their ids.
    void forEachItem(const std::function<void(const Item&)>& call) const;
    Details details(long long item) const;

private:
    SqliteConnection mConnection;
};
