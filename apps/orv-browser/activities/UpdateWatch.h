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

/// Checks five times a second how far an update is, and shows it: in the gauge, and as speed and remaining
/// time. Lives on the interface thread, from before the run until its end.
class UpdateWatch : public QObject
{
    Q_OBJECT

public:
    /// @param run must outlive the object
    /// @param receiver shows the gauge; must outlive the object
    UpdateWatch(const OrvHost::CatalogUpdateRun& run, UpdateReceiver& receiver);

Q_SIGNALS:
    /// All requests and answers so far.
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
