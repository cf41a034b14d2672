#include "OrvLibrary/Manufacturer/ManufacturerManager.h"

#include "OrvLibrary/host/MessagingSystem.h"

using boost::posix_time::ptime;

ManufacturerManager* ManufacturerManager::mInstance = nullptr;
ThreadMutex ManufacturerManager::mMutex;

namespace {

Manufacturer deletedManufacturer()
{
    const Manufacturer fresh;
    return Manufacturer("", "", "", "", "", "", false, true, fresh.getLastModified());
}

} // namespace

ManufacturerManager* ManufacturerManager::getManufacturerManager()
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    if (!mInstance)
        mInstance = new ManufacturerManager;
    return mInstance;
}

void ManufacturerManager::cleanup()
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    delete mInstance;
    mInstance = nullptr;
}

ManufacturerManager::ManufacturerManager()
    : mLastModified(std::make_shared<ptime>(boost::date_time::min_date_time)),
      mUnknownManufacturer(deletedManufacturer())
{
    loadManufacturers();
}

ManufacturerManager::~ManufacturerManager() = default;

bool ManufacturerManager::manufacturerExists(long id) const
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    return mTable.count(id) > 0;
}

const Manufacturer& ManufacturerManager::getManufacturer(long id) const
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    const auto record = mTable.find(id);
    return record != mTable.end() ? record->second : mUnknownManufacturer;
}

std::map<long, std::string> ManufacturerManager::getIdNameMap() const
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    std::map<long, std::string> names;
    for (const auto& [id, record] : mTable)
        names.emplace_hint(names.end(), id, record.getManufacturerName());
    return names;
}

bool ManufacturerManager::getAllowManufacturerEdit() const
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    return mAllowManufacturerEdit;
}

void ManufacturerManager::setAllowManufacturerEdit(bool allow)
{
    const ThreadLockGuard<ThreadMutex> lock(mMutex);
    mAllowManufacturerEdit = allow;
}

void ManufacturerManager::ManufacturerMaterialAlert()
{
    error::MessagingSystem::control().notify(__FILE__, __LINE__, error::InformationOnceTrait(),
                                             error::Message::kManufacturerMaterial, {}, {}, {});
}
