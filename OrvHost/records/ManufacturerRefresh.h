#pragma once

#include <map>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/ForwardingCurl.h"
#include "OrvLibrary/Manufacturer/Manufacturer.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// A refresh of the manufacturer records that says how it ended and what it changed, which the library does
/// not. It is a download service that hands every request on to another one and watches the library's
/// requests. One object serves one refresh, on the thread of the manufacturer manager. For example:
///
///     ManufacturerRefresh refresh(Curl::get());
///     refresh.run(dataUrl, logoUrl);
///     for (const long id : refresh.changes().added) …
class ORVHOST_EXPORT ManufacturerRefresh : public ForwardingCurl
{
public:
    using Table = std::map<long, Manufacturer>;

    /// The records that changed, by id.
    struct Changes
    {
        std::vector<long> added;
        std::vector<long> removed;
        std::vector<long> newer;
        std::vector<long> older;
        std::vector<long> changed; ///< different, with the same time
    };

    /// @param next the service that does the work; not owned
    explicit ManufacturerRefresh(Curl& next);

    /// Takes the lock that keeps other programs from changing the records meanwhile, reads the data file anew
    /// and refreshes through the manager. Before the data file is replaced, the former one is kept beside it
    /// as "manufacturer_data.json.bak".
    /// @throws std::runtime_error when another program does not come to its end, when the data could not be
    /// fetched, read or written, or when the former file could not be kept. The records are as they were
    /// then. A file that was read-only is writable for the next refresh.
    void run(const std::string& dataUrl, const std::string& logoUrl);

    const Changes& changes() const { return mChanges; }
    /// One line for each logo that could not be fetched: address and reason.
    const std::vector<std::string>& failedLogos() const { return mFailedLogos; }

    using ForwardingCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& target, std::string& reason) override;

    /// The records that the manager holds.
    static Table currentTable();

private:
    void takeData(const std::string& url, const fileString& file);
    static void prepareToOverwrite();
    static void demandWritten();

    bool mIsAsked = false;   ///< whether the service was asked for its file
    bool mIsApplied = false; ///< whether that file is newer, so that it replaces ours
    std::string mFailure;    ///< why the file cannot be had or taken over; empty when it can
    std::vector<std::string> mFailedLogos;
    Changes mChanges;
};

} // namespace OrvHost
