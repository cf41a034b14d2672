#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QByteArray>
#include <QSqlDatabase>
#include <QVariant>

namespace test {

/// Writes a catalog database row by row, in one transaction that the destructor commits.
class CatalogMaker
{
public:
    /// @param id the library database id; an empty id is not written
    CatalogMaker(const std::string& path, const std::string& id);
    ~CatalogMaker();
    CatalogMaker(const CatalogMaker&) = delete;
    CatalogMaker& operator=(const CatalogMaker&) = delete;

    /// @return the id of the folder, from 1
    int addFolder(const std::string& name, std::optional<int> parent = std::nullopt);

    struct Item
    {
        std::string name;
        std::string paneName = {};
        std::optional<int> style = std::nullopt;
        std::optional<int> manufacturer = std::nullopt;
        QByteArray picture = {};
    };
    /// @return the id of the item, from 0
    int addItem(int folder, const Item& item);
    /// Adds folders "Folder 1" and so on at the top of an empty catalog.
    void addFolders(int count);
    /// Adds items "Item 1" and so on, each with `picture` unless it is empty.
    void addItems(int folder, int count, const QByteArray& picture = {});

    /// A small picture in the PNG format.
    static QByteArray picture();

private:
    void run(const QString& statement, const QVariantList& values = {});

    QString mConnection;
    QSqlDatabase mDatabase;
    int mFolders = 0;
    int mItems = 0;
};

} // namespace test
