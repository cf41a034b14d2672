#include "OrvHost/update/UpdateRelay_p.h"

#include <exception>

#include "OrvHost/update/CatalogSwapper.h"

namespace OrvHost {

namespace {

QMetaMethod slotOf(const QObject& host, const char* signature)
{
    const QMetaObject* const type = host.metaObject();
    return type->method(type->indexOfMethod(signature));
}

} // namespace

UpdateRelay::UpdateRelay(QObject& host, CatalogSwapper& swapper)
    : mSwapper(swapper),
      mHost(&host),
      mSlots{slotOf(host, "onSetText(std::string)"),
             slotOf(host, "onSetUnits(std::string)"),
             slotOf(host, "onSetRangeInGauge(size_t)"),
             slotOf(host, "onSetValueInGauge(size_t)"),
             slotOf(host, "onUpdateInGauge()"),
             slotOf(host, "onCatalogUpdatedEvent(FileStringPair)"),
             slotOf(host, "closeCatalogUpdateEvent(LibraryCatalogUpdate::UpdateData)"),
             slotOf(host, "onClose()")}
{
    // A functor without a receiver runs directly, on the thread that destroys the object.
    mDestroyed = connect(&host, &QObject::destroyed, [this] {
        const std::lock_guard<std::mutex> lock(mMutex);
        mHost = nullptr;
    });
    moveToThread(&mThread);
    mThread.start();
}

UpdateRelay::~UpdateRelay()
{
    drain();
    disconnect(mDestroyed);
}

void UpdateRelay::drain()
{
    // Queued behind everything that has come. By name, as in `CatalogUpdateRun`.
    QMetaObject::invokeMethod(this, "leave", Qt::QueuedConnection);
    mThread.wait();
}

void UpdateRelay::leave()
{
    mThread.quit();
}

void UpdateRelay::handOn(Slot slot, QGenericArgument argument)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mHost && mSlots[slot].isValid())
        mSlots[slot].invoke(mHost, Qt::QueuedConnection, argument);
}

void UpdateRelay::onSetText(std::string text)
{
    handOn(SetText, Q_ARG(std::string, text));
}

void UpdateRelay::onSetUnits(std::string unit)
{
    handOn(SetUnits, Q_ARG(std::string, unit));
}

void UpdateRelay::onSetRangeInGauge(size_t range)
{
    handOn(SetRange, Q_ARG(size_t, range));
}

void UpdateRelay::onSetValueInGauge(size_t value)
{
    handOn(SetValue, Q_ARG(size_t, value));
}

void UpdateRelay::onUpdateInGauge()
{
    handOn(UpdateGauge);
}

void UpdateRelay::onCatalogUpdatedEvent(FileStringPair catalog)
{
    try {
        mSwapper.examine(catalog.second);
    } catch (const std::exception&) {
        // Then the swapper looks at it when it puts it in place.
    }
    handOn(CatalogUpdated, Q_ARG(FileStringPair, catalog));
}

void UpdateRelay::closeCatalogUpdateEvent(LibraryCatalogUpdate::UpdateData outcome)
{
    handOn(CloseUpdate, Q_ARG(LibraryCatalogUpdate::UpdateData, outcome));
}

void UpdateRelay::onClose()
{
    handOn(Close);
}

void UpdateRelay::end()
{
    Q_EMIT ended();
}

} // namespace OrvHost
