#pragma once

#include <atomic>
#include <memory>

#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include "OrvHost/Settings.h"
#include "apps/orv-browser/start/ServiceOffer.h"

/// Asks services for what they offer while the user types an address: after a pause, off the interface
/// thread, and the answer to an address that is no longer wanted is never told. Lives on the interface
/// thread.
class ServiceLook : public QObject
{
    Q_OBJECT

public:
    explicit ServiceLook(QObject* parent = nullptr);
    /// Ends the requests, and waits for that, a tenth of a second at most.
    ~ServiceLook() override;

    /// Asks this service in a moment; a former question is dropped.
    void ask(const OrvHost::Settings::Values& settings);
    /// Drops what was asked.
    void stop();
    bool isAsking() const { return mCancelled && !*mCancelled; }

Q_SIGNALS:
    /// The pause is over, and the service is being asked.
    void asking();
    void answered(const ServiceOffer& offer);

private:
    void begin();

    QTimer mPause;
    QThreadPool mPool;
    OrvHost::Settings::Values mSettings;
    std::shared_ptr<std::atomic<bool>> mCancelled; ///< of the question that is out
};
