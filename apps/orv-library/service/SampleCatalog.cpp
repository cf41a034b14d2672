#include "apps/orv-library/service/SampleCatalog.h"

#include <random>
#include <stdexcept>

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileUtils.h"
#include "apps/orv-library/service/SamplePicture.h"

namespace {

constexpr int kPictureSide = 48;
constexpr int kFirstStyle = 10000;
constexpr int kStyles = 15;

constexpr const char* kItemTable =
    "CREATE TABLE item (id INTEGER PRIMARY KEY, folder INTEGER NOT NULL REFERENCES folder, name TEXT NOT "
    "NULL,"
    " pane_name TEXT NOT NULL, style INTEGER, manufacturer INTEGER, picture BLOB, geometry BLOB)";

const char* const kSchema[] = {
    "PRAGMA page_size = 4096",
    "PRAGMA journal_mode = OFF",
    "CREATE TABLE catalog (key TEXT PRIMARY KEY, value TEXT NOT NULL)",
    "CREATE TABLE folder (id INTEGER PRIMARY KEY, parent INTEGER REFERENCES folder, name TEXT NOT NULL)",
    kItemTable,
    "CREATE INDEX folder_parent ON folder (parent)",
    "CREATE INDEX item_folder ON item (folder)",
    "BEGIN",
};

const char* const kFinishes[] = {"Oak",    "Walnut", "White", "Graphite", "Birch", "Sand",
                                 "Petrol", "Café",   "Brass", "Grün",     "Ivory", "Slate"};

/// An open database with its own connection, which is closed at the end of the block.
class Database
{
public:
    explicit Database(const std::string& path)
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", connectionName());
        database.setDatabaseName(QFile::decodeName(path.c_str()));
        if (!database.open())
            throw std::runtime_error(database.lastError().text().toStdString());
    }
    ~Database()
    {
        connection().close();
        QSqlDatabase::removeDatabase(connectionName());
    }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void run(const QString& statement, const QVariantList& values = {}) const
    {
        QSqlQuery query(connection());
        query.prepare(statement);
        for (const QVariant& value : values)
            query.addBindValue(value);
        if (!query.exec())
            throw std::runtime_error(query.lastError().text().toStdString());
    }

private:
    static QString connectionName() { return QStringLiteral("orv-sample"); }
    static QSqlDatabase connection() { return QSqlDatabase::database(connectionName()); }
};

QByteArray geometry(std::mt19937& random, int bytes)
{
    QByteArray data(bytes, '\0');
    for (char& byte : data)
        byte = static_cast<char>(random() & 0x3F); // so that it compresses like real geometry
    return data;
}

class Writer
{
public:
    Writer(const Database& database, const SampleCatalogPlan& plan)
        : mDatabase(database), mPlan(plan), mRandom(plan.seed)
    {
    }

    void write()
    {
        for (const char* statement : kSchema)
            mDatabase.run(statement);
        writeProperty("id", mPlan.id);
        writeProperty("name", mPlan.name);
        writeProperty("version", "1");
        for (std::size_t i = 0; i < mPlan.folders.size(); ++i)
            writeFolder(static_cast<int>(i) + 1, mPlan.folders[i]);
        mDatabase.run("COMMIT");
    }

private:
    void writeProperty(const char* key, const std::string& value)
    {
        mDatabase.run("INSERT INTO catalog VALUES (?, ?)", {key, QString::fromStdString(value)});
    }

    /// Every third folder is inside the one before it.
    void writeFolder(int id, const std::string& name)
    {
        const QVariant parent = id % 3 == 0 ? QVariant(id - 1) : QVariant(QVariant::Int);
        mDatabase.run("INSERT INTO folder VALUES (?, ?, ?)", {id, parent, QString::fromStdString(name)});
        for (int i = 0; i < mPlan.itemsPerFolder; ++i)
            writeItem(id, name, i);
    }

    void writeItem(int folder, const std::string& folderName, int number)
    {
        const QString name = QString("%1 %2 %3")
                                 .arg(QString::fromUtf8(kFinishes[mRandom() % std::size(kFinishes)]),
                                      QString::fromStdString(folderName))
                                 .arg(number + 1);
        const int style = kFirstStyle + static_cast<int>(mRandom() % kStyles);
        const QByteArray picture = SamplePicture::png(mRandom(), kPictureSide);
        mDatabase.run("INSERT INTO item VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
                      {mNextItem++, folder, name, QString("%1 (%2)").arg(name).arg(style), style, maker(),
                       picture, geometry(mRandom, mPlan.geometryBytes)});
    }

    QVariant maker()
    {
        if (mPlan.manufacturer != 0)
            return mPlan.manufacturer;
        const int choice = static_cast<int>(mRandom() % 6);
        return choice < 3 ? QVariant(101 + choice) : QVariant(QVariant::Int);
    }

    const Database& mDatabase;
    const SampleCatalogPlan& mPlan;
    std::mt19937 mRandom;
    int mNextItem = 0;
};

} // namespace

void writeSampleCatalog(const std::string& path, const SampleCatalogPlan& plan)
{
    const fileString beside(path + ".orv-new");
    FileUtils::removePath(beside, 1);
    FileReaper guard(beside);
    try {
        const Database database(beside.toNativeString());
        Writer(database, plan).write();
    } catch (const std::exception& error) {
        throw std::runtime_error(path + ": " + error.what());
    }
    if (!FileUtils::renameFile(beside, fileString(path)))
        throw std::runtime_error(path + ": cannot be written");
}
