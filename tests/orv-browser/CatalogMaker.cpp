#include "tests/orv-browser/CatalogMaker.h"

#include <stdexcept>

#include <QBuffer>
#include <QImage>
#include <QSqlError>
#include <QSqlQuery>

namespace test {

namespace {

constexpr const char* kTables[] = {
    "CREATE TABLE catalog (key TEXT PRIMARY KEY, value TEXT NOT NULL)",
    "CREATE TABLE folder (id INTEGER PRIMARY KEY, parent INTEGER REFERENCES folder, name TEXT NOT NULL)",
    "CREATE TABLE item (id INTEGER PRIMARY KEY, folder INTEGER NOT NULL REFERENCES folder, "
    "name TEXT NOT NULL, pane_name TEXT NOT NULL, style INTEGER, manufacturer INTEGER, picture BLOB, "
    "geometry BLOB)",
    "CREATE INDEX folder_parent ON folder (parent)",
    "CREATE INDEX item_folder ON item (folder)",
};

QVariant orNull(const std::optional<int>& number)
{
    return number ? QVariant(*number) : QVariant(QVariant::Int);
}

} // namespace

CatalogMaker::CatalogMaker(const std::string& path, const std::string& id)
    : mConnection(QStringLiteral("maker of ") + QString::fromStdString(path)),
      mDatabase(QSqlDatabase::addDatabase("QSQLITE", mConnection))
{
    mDatabase.setDatabaseName(QString::fromStdString(path));
    if (!mDatabase.open())
        throw std::runtime_error(path + " cannot be opened");
    run("PRAGMA synchronous = OFF");
    mDatabase.transaction();
    for (const char* table : kTables)
        run(table);
    if (!id.empty())
        run("INSERT INTO catalog VALUES ('id', ?)", {QString::fromStdString(id)});
}

CatalogMaker::~CatalogMaker()
{
    mDatabase.commit();
    mDatabase.close();
    mDatabase = QSqlDatabase();
    QSqlDatabase::removeDatabase(mConnection);
}

int CatalogMaker::addFolder(const std::string& name, std::optional<int> parent)
{
    run("INSERT INTO folder VALUES (?, ?, ?)", {++mFolders, orNull(parent), QString::fromStdString(name)});
    return mFolders;
}

int CatalogMaker::addItem(int folder, const Item& item)
{
    run("INSERT INTO item VALUES (?, ?, ?, ?, ?, ?, ?, NULL)",
        {mItems, folder, QString::fromStdString(item.name), QString::fromStdString(item.paneName),
         orNull(item.style), orNull(item.manufacturer), item.picture});
    return mItems++;
}

void CatalogMaker::addFolders(int count)
{
    run("WITH RECURSIVE numbers (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < ?) "
        "INSERT INTO folder SELECT n, NULL, 'Folder ' || n FROM numbers",
        {count});
    mFolders += count;
}

void CatalogMaker::addItems(int folder, int count, const QByteArray& picture)
{
    run("WITH RECURSIVE numbers (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < ?) "
        "INSERT INTO item SELECT ? + n, ?, 'Item ' || n, '', NULL, NULL, ?, NULL FROM numbers",
        {count, mItems - 1, folder, picture});
    mItems += count;
}

QByteArray CatalogMaker::picture()
{
    QImage image(16, 16, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

void CatalogMaker::run(const QString& statement, const QVariantList& values)
{
    QSqlQuery query(mDatabase);
    query.prepare(statement);
    for (const QVariant& value : values)
        query.addBindValue(value);
    if (!query.exec())
        throw std::runtime_error(query.lastError().text().toStdString());
}

} // namespace test
