#include "OrvLibrary/catalog/CatalogEvents_p.h"

#include <algorithm>
#include <limits>

#include <QMetaType>

namespace LibraryCatalogUpdate {

namespace {

/// Registers a type only by name. Declaring it is up to the host: if the host does, both get the same number
/// for the same name, in any order.
template <class T>
void registerByName(const char* name)
{
    if (QMetaType::type(name) == QMetaType::UnknownType)
        qRegisterMetaType<T>(name);
}

/// Registers the pair under its full name, and under our name as an alias. Qt does the same in a host that
/// has declared `fileString`.
void registerFileStringPair()
{
    registerByName<FileStringPair>("std::pair<fileString,fileString>");
    if (QMetaType::type("FileStringPair") == QMetaType::UnknownType)
        QMetaType::registerTypedef("FileStringPair", QMetaType::type("std::pair<fileString,fileString>"));
}

void registerTypes()
{
    registerByName<std::string>("std::string");
    registerByName<std::size_t>("size_t");
    registerByName<fileString>("fileString");
    registerByName<UpdateData>("LibraryCatalogUpdate::UpdateData");
    registerFileStringPair();
}

QMetaMethod slotOf(const QObject& host, const char* signature)
{
    const QMetaObject* const type = host.metaObject();
    return type->method(type->indexOfMethod(signature));
}

std::size_t gaugeNumber(std::uint64_t value)
{
    return std::min<std::uint64_t>(value, std::numeric_limits<int>::max());
}

} // namespace

std::shared_ptr<CatalogEvents> CatalogEvents::watch(QObject& host)
{
    registerTypes();
    return std::shared_ptr<CatalogEvents>(new CatalogEvents(host));
}

CatalogEvents::CatalogEvents(QObject& host)
    : mSlots{slotOf(host, "onSetText(std::string)"),
             slotOf(host, "onSetUnits(std::string)"),
             slotOf(host, "onSetRangeInGauge(size_t)"),
             slotOf(host, "onSetValueInGauge(size_t)"),
             slotOf(host, "onUpdateInGauge()"),
             slotOf(host, "onCatalogUpdatedEvent(FileStringPair)"),
             slotOf(host, "closeCatalogUpdateEvent(LibraryCatalogUpdate::UpdateData)"),
             slotOf(host, "onClose()")}
{
    mHost->object = &host;
    // Without a receiver object, Qt calls this function directly, on the thread that destroys the host
    // object.
    mDestroyed = QObject::connect(&host, &QObject::destroyed, [watched = mHost] {
        const ThreadLockGuard<ThreadMutex> lock(watched->mutex);
        watched->object = nullptr;
    });
}

CatalogEvents::~CatalogEvents()
{
    // The destruction cannot go on while we hold the lock. Once it has passed this point, it removes the host
    // object's connections itself.
    const ThreadLockGuard<ThreadMutex> lock(mHost->mutex);
    if (mHost->object)
        QObject::disconnect(mDestroyed);
}

void CatalogEvents::post(Slot slot, QGenericArgument argument)
{
    const ThreadLockGuard<ThreadMutex> lock(mHost->mutex);
    if (mHost->object && mSlots[slot].isValid())
        mSlots[slot].invoke(mHost->object, Qt::QueuedConnection, argument);
}

void CatalogEvents::setText(const std::string& text)
{
    post(SetText, Q_ARG(std::string, text));
}

void CatalogEvents::setUnits(const std::string& unit)
{
    post(SetUnits, Q_ARG(std::string, unit));
}

void CatalogEvents::setRangeInGauge(std::uint64_t range)
{
    const std::size_t number = gaugeNumber(range);
    post(SetRange, Q_ARG(size_t, number));
}

void CatalogEvents::setValueInGauge(std::uint64_t value)
{
    const std::size_t number = gaugeNumber(value);
    post(SetValue, Q_ARG(size_t, number));
}

void CatalogEvents::updateInGauge()
{
    post(UpdateGauge);
}

void CatalogEvents::catalogUpdated(const FileStringPair& destinationAndNewFile)
{
    post(CatalogUpdated, Q_ARG(FileStringPair, destinationAndNewFile));
}

void CatalogEvents::closeCatalogUpdate(const UpdateData& data)
{
    post(CloseUpdate, Q_ARG(LibraryCatalogUpdate::UpdateData, data));
}

void CatalogEvents::close()
{
    post(Close);
}

} // namespace LibraryCatalogUpdate
