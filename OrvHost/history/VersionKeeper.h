#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogHistory.h"
#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/update/ForwardingCurl.h"

namespace OrvHost {

/// A download service between an update (or a check) and the real service, for one run. May be used from any
/// thread.
///
/// It answers some header requests with "current" (304), so that the library does not touch the catalog and
/// its hash line: those for held catalogs, and those whose answer is a version that the user has left. All
/// other header lines are those of the real answer. It remembers newer versions of held catalogs. A service
/// that judges answers must be above this one, so that it judges the same answers as the library.
///
/// The library itself puts archives of referenced files into place. So this service keeps the former archive
/// directly before the download of the new one.
class ORVHOST_EXPORT VersionKeeper : public ForwardingCurl
{
public:
    /// A version of a held catalog that the service has and the user has not chosen.
    struct Offer
    {
        CatalogPlace place;
        std::string version;
        std::string url;
        std::vector<std::string> headerLines;
    };

    /// @param next not owned
    /// @param pins after `CatalogPins::reconcile`
    VersionKeeper(Curl& next, const CatalogPins& pins) : ForwardingCurl(next), mPins(pins) {}

    bool getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                      std::string& headerText, std::int64_t& status) override;
    /// The answer that the caller got.
    Answer lastAnswer() override;
    using ForwardingCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int& errorNumber) override;
    bool downloadResumable(const ResumableDownload& request, void* context, ProgressFunction progress,
                           std::string& reason, int& errorNumber) override;

    /// The newer versions of held catalogs seen so far.
    std::vector<Offer> offers() const;

private:
    bool tellCurrent(std::int64_t& status);
    bool isUnwanted(const CatalogPlace& place, const std::string& version) const;
    bool keepArchive(const std::string& url, std::string& reason);

    const CatalogPins mPins;
    mutable std::mutex mMutex;
    CatalogHistory mHistory; ///< this and the next one guarded by mMutex
    std::vector<Offer> mOffers;
    /// Whether the last request's answer was replaced by "current". All requests of a run come from one
    /// thread.
    bool mIsToldCurrent = false;
};

} // namespace OrvHost
