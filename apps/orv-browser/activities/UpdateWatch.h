#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include "apps/orv-browser/activities/TransferSpeed.h"

namespace OrvHost {
class CatalogUpdateRun;
struct ServiceReport;
} // namespace OrvHost
class UpdateReceiver;

/// Looks five times a second how far an update has come, and shows it: in the gauge, and as speed and time
/// left. Lives on the interface thread, from before the run starts until it ends.
class UpdateWatch : public QObject
{
    Q_OBJECT

public:
    /// @param run outlives the object
    /// @param receiver shows the gauge; outlives the object
    UpdateWatch(const OrvHost::CatalogUpdateRun& run, UpdateReceiver& receiver);

Q_SIGNALS:
    /// What the service was asked and answered until now.
    void looked(const OrvHost::ServiceReport& service);
    /// For people.
    void speedChanged(const QString& text);

private:
    void look();

    const OrvHost::CatalogUpdateRun& mRun;
    UpdateReceiver& mReceiver;
    QElapsedTimer mTime;
    TransferSpeed mSpeed;
    QTimer mTimer;
};
