#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace OrvHost {

/// The service's part in the result of one catalog.
struct CatalogReport
{
    std::string asked;       ///< the name under which the service was asked, such as "Garden.orvlibz"
    std::string sentTag;     ///< tag of the installed version, as the service was told; empty for none
    std::int64_t status = 0; ///< HTTP status of the last answer to the header request; 0 when there was none
    std::optional<std::string> tag;     ///< of the version that the service has; none when it told none
    std::optional<std::int64_t> length; ///< of that version, in bytes; none when the service told none
    std::int64_t bodyStatus = 0;        ///< HTTP status of the last answer to the download; 0 for none
    std::int64_t bytes = 0;             ///< of the body that was fetched
    std::int64_t received = 0;          ///< of a body that is being fetched: the bytes that are there
    std::chrono::milliseconds time{0};  ///< that its requests took, pauses included
    bool isDownloadTried = false;
    bool isDownloaded = false; ///< the body arrived and is the announced version
    /// Why the last request failed, for people; empty when it did not, and after a cancel.
    std::string reason;

    /// Whether the service has another version than the installed one, or may have one.
    bool isNew() const { return isFound() && (!tag || *tag != sentTag); }
    bool isFound() const { return status == 200; }
    bool isUnchanged() const { return status == 304; }
    /// Whether the service says that it does not have it.
    bool isMissing() const { return status == 404 || status == 410; }
};

/// The result of a request for something else than a catalog.
struct RequestReport
{
    bool isAsked = false;
    bool isGood = false;
    std::int64_t status = 0; ///< HTTP status of the last answer; 0 when there was none
    std::string reason;      ///< why it failed; empty when it did not, and after a cancel
};

/// Everything that a run asked the web service, and what it was answered.
struct ServiceReport
{
    RequestReport endpoint;
    RequestReport index;
    std::set<std::string> indexNames;    ///< the names that the content index lists
    std::vector<CatalogReport> catalogs; ///< in the order in which they were first asked for
    /// Why this is no catalog service at all, in one sentence; empty when it may be one.
    std::string verdict;
};

} // namespace OrvHost
