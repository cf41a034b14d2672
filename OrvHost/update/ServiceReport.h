#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace OrvHost {

/// The service's answer about one catalog.
struct CatalogReport
{
    std::string asked;       ///< the name in the request, such as "Garden.orvlibz"
    std::string sentTag;     ///< tag of the installed version in the request; empty for none
    std::int64_t status = 0; ///< HTTP status of the last answer to the header request; 0 if there was none
    std::optional<std::string> tag;     ///< tag of the service's version; empty if unknown
    std::optional<std::int64_t> length; ///< its size in bytes; empty if unknown
    std::int64_t bodyStatus = 0; ///< HTTP status of the last answer to the download; 0 if there was none
    std::int64_t bytes = 0;      ///< size of the downloaded body
    std::int64_t received = 0;   ///< bytes received so far, during the download
    std::chrono::milliseconds time{0}; ///< time for its requests, with pauses
    bool isDownloadTried = false;
    bool isDownloaded = false; ///< whether the body has arrived and is the announced version
    /// Why the last request failed, for people; empty if it did not, and after a cancel.
    std::string reason;

    /// Whether the service has, or may have, another version than the installed one.
    bool isNew() const { return isFound() && (!tag || *tag != sentTag); }
    bool isFound() const { return status == 200; }
    bool isUnchanged() const { return status == 304; }
    /// Whether the service says that it does not have the catalog.
    bool isMissing() const { return status == 404 || status == 410; }
};

/// The result of a request that is not for a catalog.
struct RequestReport
{
    bool isAsked = false;
    bool isGood = false;
    std::int64_t status = 0; ///< HTTP status of the last answer; 0 if there was none
    std::string reason;      ///< why it failed; empty if it did not, and after a cancel
};

/// All requests of a run to the web service, and the answers.
struct ServiceReport
{
    RequestReport endpoint;
    RequestReport index;
    std::set<std::string> indexNames;    ///< the names in the content index
    std::vector<CatalogReport> catalogs; ///< in the order of their first request
    /// Why this is not a catalog service, in one sentence; empty if it may be one.
    std::string verdict;
};

} // namespace OrvHost
