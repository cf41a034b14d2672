#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogHistory.h"
#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/update/ForwardingCurl.h"

namespace OrvHost {

/// Stands between an update, or a check, and the download service, for the length of one run. May be used
/// from any thread.
///
/// A header request for a held catalog, and one that is answered with a version which the user has gone back
/// from, is told as current (304), with the header lines of the true answer: the library then leaves the
/// catalog and its hash line alone. Newer versions of held catalogs are noted. A service that judges answers
/// stands over this one, so that it judges what the library is told.
///
/// The library itself puts archives of referenced files in their places, so the former one is kept here, just
/// before the new one is downloaded.
class ORVHOST_EXPORT VersionKeeper : public ForwardingCurl
{
public:
    /// A version of a held catalog that the service has and the user does not want yet.
    struct Offer
    {
        CatalogPlace place;
        std::string version;
        std::string url;
        std::vector<std::string> headerLines;
    };

    /// @param next not owned
    /// @param pins as `CatalogPins::reconcile` leaves them
    VersionKeeper(Curl& next, const CatalogPins& pins) : ForwardingCurl(next), mPins(pins) {}

    bool getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                      std::string& headerText, std::int64_t& status) override;
    /// The answer as it was told.
    Answer lastAnswer() override;
    using ForwardingCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int& errorNumber) override;
    bool downloadResumable(const ResumableDownload& request, void* context, ProgressFunction progress,
                           std::string& reason, int& errorNumber) override;

    /// The newer versions of held catalogs that the service has offered so far.
    std::vector<Offer> offers() const;

private:
    bool tellCurrent(std::int64_t& status);
    bool isUnwanted(const CatalogPlace& place, const std::string& version) const;
    bool keepArchive(const std::string& url, std::string& reason);

    const CatalogPins mPins;
    mutable std::mutex mMutex;
    CatalogHistory mHistory; ///< this and the next one guarded by mMutex
    std::vector<Offer> mOffers;
    /// Whether the calling thread's last request was told as current although it was not. The requests of a
    /// run come from one thread.
    bool mIsToldCurrent = false;
};

} // namespace OrvHost
