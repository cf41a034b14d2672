#pragma once

#include <map>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/ForwardingCurl.h"
#include "OrvLibrary/Manufacturer/Manufacturer.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Refreshes the manufacturer records and reports the result and the changes, which the library does not do.
/// It is a download service that passes every request on and watches the library's requests. One object
/// serves one refresh, on the thread of the manufacturer manager. Example:
///
///     ManufacturerRefresh refresh(Curl::get());
///     refresh.run(dataUrl, logoUrl);
///     for (const long id : refresh.changes().added) …
class ORVHOST_EXPORT ManufacturerRefresh : public ForwardingCurl
{
public:
    using Table = std::map<long, Manufacturer>;

    /// The ids of the records that have changed.
    struct Changes
    {
        std::vector<long> added;
        std::vector<long> removed;
        std::vector<long> newer;
        std::vector<long> older;
        std::vector<long> changed; ///< different, but with the same time
    };

    /// @param next makes the requests; not owned
    explicit ManufacturerRefresh(Curl& next);

    /// Locks the records against other programs, reads the data file again and refreshes through the manager.
    /// Before the data file is replaced, the former one is copied to "manufacturer_data.json.bak" beside it.
    /// @throws std::runtime_error if another program has the lock too long, if the data cannot be downloaded,
    /// read or written, or if the former file cannot be kept. The records are then unchanged. A read-only
    /// file has become writable for the next refresh.
    void run(const std::string& dataUrl, const std::string& logoUrl);

    const Changes& changes() const { return mChanges; }
    /// One line for each logo that could not be downloaded: address and reason.
    const std::vector<std::string>& failedLogos() const { return mFailedLogos; }

    using ForwardingCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target, std::string& reason) override;

    /// The records in the manager.
    static Table currentTable();

private:
    void takeData(const std::string& url, const fileString& file);
    static void prepareToOverwrite();
    static void demandWritten();

    bool mIsAsked = false;   ///< whether the service's file was requested
    bool mIsApplied = false; ///< whether the service's file is newer, so it replaces ours
    std::string mFailure;    ///< why the file is not available or not usable; empty if it is
    std::vector<std::string> mFailedLogos;
    Changes mChanges;
};

} // namespace OrvHost
