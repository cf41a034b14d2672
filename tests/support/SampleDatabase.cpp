#include "tests/support/SampleDatabase.h"

#include <stdexcept>

#include <sqlite3.h>

#include "tests/support/TempFolder.h"

namespace test {

namespace {

void require(bool isGood, sqlite3* database)
{
    if (!isGood)
        throw std::runtime_error(std::string("sample database: ") + sqlite3_errmsg(database));
}

void insert(sqlite3* database, const std::string& content)
{
    sqlite3_stmt* statement = nullptr;
    require(sqlite3_prepare_v2(database, "INSERT INTO Sample VALUES (?)", -1, &statement, nullptr) ==
                SQLITE_OK,
            database);
    sqlite3_bind_blob64(statement, 1, content.data(), content.size(), SQLITE_STATIC);
    const bool isDone = sqlite3_step(statement) == SQLITE_DONE;
    sqlite3_finalize(statement);
    require(isDone, database);
}

void run(sqlite3* database, const char* statement)
{
    require(sqlite3_exec(database, statement, nullptr, nullptr, nullptr) == SQLITE_OK, database);
}

} // namespace

std::string sampleDatabase(const std::string& content, std::size_t bytes)
{
    sqlite3* database = nullptr;
    require(sqlite3_open(":memory:", &database) == SQLITE_OK, database);
    run(database, "CREATE TABLE Sample (Content BLOB)");
    insert(database, content);
    if (bytes > 0)
        insert(database, std::string(bytes, 'x'));
    sqlite3_int64 size = 0;
    unsigned char* const image = sqlite3_serialize(database, "main", &size, 0);
    require(image != nullptr, database);
    std::string result(reinterpret_cast<const char*>(image), static_cast<std::size_t>(size));
    sqlite3_free(image);
    sqlite3_close(database);
    return result;
}

std::string slowDatabase()
{
    const TempFolder folder;
    const std::string file = folder.file("slow").toNativeString();
    slowDownCheck(file);
    return readFile(file);
}

void slowDownCheck(const std::string& file)
{
    sqlite3* database = nullptr;
    require(sqlite3_open(file.c_str(), &database) == SQLITE_OK, database);
    run(database, "CREATE TABLE Slow (Number INTEGER)");
    run(database, "WITH RECURSIVE Numbers(Number) AS (SELECT 1 UNION ALL SELECT Number + 1 FROM Numbers "
                  "WHERE Number < 10000) INSERT INTO Slow SELECT Number FROM Numbers");
    // The column computed for each row makes the check slow: a millisecond per row. Inserting rows would be
    // just as slow, so the column is added after the rows.
    run(database, "PRAGMA writable_schema = 1");
    run(database,
        "UPDATE sqlite_master SET sql = 'CREATE TABLE Slow (Number INTEGER, Digits INTEGER NOT NULL "
        "AS (length(hex(zeroblob(200000 + Number)))))' WHERE name = 'Slow'");
    sqlite3_close(database);
}

} // namespace test
