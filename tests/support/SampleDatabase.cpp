#include "tests/support/SampleDatabase.h"

#include <stdexcept>

#include <sqlite3.h>

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

} // namespace

std::string sampleDatabase(const std::string& content, std::size_t bytes)
{
    sqlite3* database = nullptr;
    require(sqlite3_open(":memory:", &database) == SQLITE_OK, database);
    require(sqlite3_exec(database, "CREATE TABLE Sample (Content BLOB)", nullptr, nullptr, nullptr) ==
                SQLITE_OK,
            database);
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

} // namespace test
