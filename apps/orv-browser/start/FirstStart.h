#pragma once

#include <QObject>

#include "apps/orv-browser/SharedSettings.h"
#include "apps/orv-browser/start/ServiceOffer.h"

class FirstStartPage;
class LibraryActions;
class SampleService;
class ServiceLook;

/// The way from an empty library to the first content: asks the service whose address the user types, keeps
/// address and choices in the shared settings, and fetches. Lives on the interface thread, as long as the
/// window.
class FirstStart : public QObject
{
    Q_OBJECT

public:
    /// @param library and page outlive the object
    FirstStart(LibraryActions& library, FirstStartPage& page, QObject* parent);

    /// Ends what is asked, and the service of the samples.
    void stop();

private:
    void connectPage();
    void showChanged(bool isShown);
    void look();
    void showOffer(const ServiceOffer& offer);
    void fetch();
    void trySamples();
    void fetchSamples(const ServiceOverrides& service);
    void samplesFailed(const QString& reason);
    void runningChanged(bool isRunning);
    OrvHost::Settings::Values wanted() const;

    LibraryActions& mLibrary;
    FirstStartPage& mPage;
    ServiceLook* mLook;
    SampleService* mSamples;
    ServiceOverrides mOverrides; ///< of the command line, while the samples stand in their place
};
