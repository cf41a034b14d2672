#include "apps/orv-browser/models/CatalogIds.h"

#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/CatalogDatabase.h"

CatalogIds::CatalogIds(QObject* parent) : QObject(parent)
{
    mPool.setMaxThreadCount(1);
}

CatalogIds::~CatalogIds()
{
    mPool.clear();
    mPool.waitForDone();
}

void CatalogIds::read(const std::vector<fileString>& databases)
{
    std::map<fileString, int> asked;
    for (const fileString& database : databases)
        if (mIds.count(database) == 0)
            asked[database] = mVersions[database];
    if (asked.empty())
        return;
    ++mReadings;
    Background::run(
        mPool, this,
        [asked] {
            Ids found;
            for (const auto& [database, version] : asked) {
                try {
                    found[database] = CatalogDatabase(database).id();
                } catch (const std::exception&) {
                    // what cannot be read has no id to filter by
                }
            }
            return found;
        },
        [this, asked](const Ids& found) { take(found, asked); });
}

void CatalogIds::take(const Ids& found, const std::map<fileString, int>& asked)
{
    for (const auto& [database, id] : found)
        if (mVersions[database] == asked.at(database)) // else it was replaced while it was read
            mIds[database] = id;
    if (--mReadings == 0)
        Q_EMIT ready();
}

std::optional<std::string> CatalogIds::id(const fileString& database) const
{
    const auto found = mIds.find(database);
    return found == mIds.end() ? std::nullopt : std::optional<std::string>(found->second);
}

void CatalogIds::forget(const fileString& database)
{
    mIds.erase(database);
    ++mVersions[database];
}
