#include "OrvHost/records/ManufacturerRefresh.h"

#include <stdexcept>
#include <utility>

#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

using boost::posix_time::ptime;

namespace {

fileString dataFile()
{
    return PathUtils::getObject().getManufacturerDataPath() / fileString("manufacturer_data.json");
}

/// The time; the earliest one if it is not a date.
ptime dateOf(const ptime& time)
{
    return time.is_not_a_date_time() ? ptime(boost::date_time::min_date_time) : time;
}

/// Installs a download service for the duration of a block.
class InstalledCurl
{
public:
    explicit InstalledCurl(Curl& service) : mFormer(Curl::install(&service)) {}
    ~InstalledCurl() { Curl::install(mFormer); }
    InstalledCurl(const InstalledCurl&) = delete;
    InstalledCurl& operator=(const InstalledCurl&) = delete;

private:
    Curl* mFormer;
};

void compare(long id, const Manufacturer& before, const Manufacturer& after,
             ManufacturerRefresh::Changes& changes)
{
    const ptime former = dateOf(before.getLastModified());
    const ptime now = dateOf(after.getLastModified());
    if (now > former)
        changes.newer.push_back(id);
    else if (now < former)
        changes.older.push_back(id);
    else if (!(before == after))
        changes.changed.push_back(id);
}

ManufacturerRefresh::Changes difference(const ManufacturerRefresh::Table& before,
                                        const ManufacturerRefresh::Table& after)
{
    ManufacturerRefresh::Changes changes;
    for (const auto& [id, record] : before) {
        const auto now = after.find(id);
        if (now == after.end())
            changes.removed.push_back(id);
        else
            compare(id, record, now->second, changes);
    }
    for (const auto& [id, record] : after) {
        if (before.count(id) == 0)
            changes.added.push_back(id);
    }
    return changes;
}

/// Refuses to overwrite a file, but makes it writable for the next attempt, as the library does.
[[noreturn]] void refuse(const fileString& file)
{
    FileUtils::makeFileWritable(file);
    const bool isWritable = file.pathExists() && FileUtils::canWriteFile(file);
    throw std::runtime_error("cannot write " + file.toNativeString() +
                             (isWritable ? ": it was read-only; the next refresh may write it" : ""));
}

} // namespace

ManufacturerRefresh::ManufacturerRefresh(Curl& next) : ForwardingCurl(next) {}

ManufacturerRefresh::Table ManufacturerRefresh::currentTable()
{
    const ManufacturerManager& manager = *ManufacturerManager::getManufacturerManager();
    Table table;
    for (const auto& [id, name] : manager.getIdNameMap())
        table.emplace(id, manager.getManufacturer(id));
    return table;
}

void ManufacturerRefresh::run(const std::string& dataUrl, const std::string& logoUrl)
{
    // Another program may have changed the records since the manager read them.
    const HostLock lock = HostLock::ofChange("manufacturers");
    ManufacturerManager::getManufacturerManager()->loadManufacturers();
    const Table before = currentTable();
    const ptime former = ManufacturerManager::getManufacturerManager()->getLastModified();
    {
        const InstalledCurl watched(*this);
        ManufacturerManager::getManufacturerManager()->checkForManufacturerUpdates(dataUrl, logoUrl);
    }
    if (!mFailure.empty())
        throw std::runtime_error(mFailure);
    if (mIsApplied && ManufacturerManager::getManufacturerManager()->getLastModified() == former)
        throw std::runtime_error("cannot read what came from " + dataUrl);
    if (mIsApplied)
        demandWritten();
    mChanges = difference(before, currentTable());
}

/// The library requests the data first. All later downloads are logos.
bool ManufacturerRefresh::download_to_location(const std::string& url, const fileString& target,
                                               std::string& reason)
{
    const bool isLogo = std::exchange(mIsAsked, true);
    const bool isFetched = ForwardingCurl::download_to_location(url, target, reason);
    const std::string failure = "cannot fetch " + url + ": " + reason;
    if (isLogo && !isFetched)
        mFailedLogos.push_back(failure);
    if (isLogo)
        return isFetched;
    if (isFetched)
        takeData(url, target);
    else
        mFailure = failure;
    return mFailure.empty();
}

/// Reads the service's file before the library does.
void ManufacturerRefresh::takeData(const std::string& url, const fileString& file)
{
    Table table;
    ptime lastModified;
    std::string defaultText;
    if (!ManufacturerManager::read_manufacturer_file(file, table, &lastModified, &defaultText)) {
        mFailure = url + " answers no manufacturer file";
        return;
    }
    const ptime ours = ManufacturerManager::getManufacturerManager()->getLastModified();
    mIsApplied = dateOf(lastModified) > dateOf(ours);
    try {
        if (mIsApplied)
            prepareToOverwrite();
    } catch (const std::runtime_error& error) {
        mFailure = error.what();
    }
}

void ManufacturerRefresh::prepareToOverwrite()
{
    const fileString file = dataFile();
    if (!FileUtils::canWriteFile(file))
        refuse(file);
    const fileString backup = file + fileString(".bak");
    if (file.pathExists() && !FileUtils::copyFile(file, backup, true))
        throw std::runtime_error("cannot keep the former file as " + backup.toNativeString());
}

/// The library does not report whether it could write the file. If it did, the file has at least the
/// manager's time.
void ManufacturerRefresh::demandWritten()
{
    ManufacturerManager& manager = *ManufacturerManager::getManufacturerManager();
    const ptime applied = manager.getLastModified();
    manager.loadManufacturers();
    if (!dataFile().pathExists() || dateOf(manager.getLastModified()) < applied)
        throw std::runtime_error("cannot write " + dataFile().toNativeString());
}

} // namespace OrvHost
