#include "apps/orv-browser/models/CatalogDatabase.h"

#include <QVariant>

namespace {

constexpr int kBusyMilliseconds = 200;

std::optional<long> number(const QVariant& value)
{
    return value.isNull() ? std::nullopt : std::optional<long>(static_cast<long>(value.toLongLong()));
}

} // namespace

CatalogDatabase::CatalogDatabase(const fileString& path)
    : mConnection(path, SqliteConnection::Access::Read, kBusyMilliseconds)
{
}

std::string CatalogDatabase::value(const QString& key) const
{
    return mConnection.value(QStringLiteral("SELECT value FROM catalog WHERE key = ?"), {key})
        .toString()
        .toStdString();
}

std::vector<CatalogDatabase::Folder> CatalogDatabase::folders() const
{
    QSqlQuery query = mConnection.run(QStringLiteral("SELECT id, parent, name FROM folder"));
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
    QSqlQuery query = mConnection.run(
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
    SqliteConnection::expectSound(query);
}

CatalogDatabase::Details CatalogDatabase::details(long long item) const
{
    QSqlQuery query =
        mConnection.run(QStringLiteral("SELECT style, manufacturer, picture FROM item WHERE id = ?"), {item});
    if (!query.next())
        return {};
    return {number(query.value(0)), number(query.value(1)), query.value(2).toByteArray()};
}
