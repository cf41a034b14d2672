// Bringing the records and their logos up to date from the web service.
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"

#include <filesystem>

#include "OrvLibrary/Manufacturer/ManufacturerFileKeys_p.h"
#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/TimeUtils.h"

using boost::posix_time::ptime;
using namespace ManufacturerFileKeys;

namespace {

constexpr int kAlsoReadOnly = 1;
constexpr char kLogoPath[] = "&logo-path=";

/// What is no date counts as the earliest one, so that everything is newer than it.
ptime dateOf(const ptime& time)
{
    return time.is_not_a_date_time() ? ptime(boost::date_time::min_date_time) : time;
}

bool isNewer(const ptime& time, const ptime& than)
{
    return dateOf(time) > dateOf(than);
}

/// Whether the name is that of a file of its own in the manufacturer folder. The service says what logos are
/// called; it must not choose what is deleted or written elsewhere, or in the data file's place.
bool isLogoName(const fileString& logo)
{
    const std::string& name = logo.toNativeString();
    const auto path = std::filesystem::path(name).lexically_normal();
    if (name.empty() || name.find('\0') != std::string::npos || path.is_absolute() || !path.has_filename())
        return false;
    return *path.begin() != ".." && path != "." && path != kFileName && path != kTemporaryFileName;
}

fileString logoFile(const fileString& logo)
{
    return PathUtils::getObject().getManufacturerDataPath() / logo;
}

/// A failure leaves the logo missing.
void fetchLogo(const fileString& logo, const marl::unicode::String& logoBase)
{
    std::string ignoredReason;
    Curl::get().download_to_location(StringUtils::toWin1252(logoBase + logo.unicodeString()), logoFile(logo),
                                     ignoredReason);
}

} // namespace

void ManufacturerManager::checkForManufacturerUpdates(const marl::unicode::String& dataUrl,
                                                      const marl::unicode::String& logoUrl)
{
    try {
        fetchUpdate(StringUtils::toWin1252(dataUrl), logoUrl + marl::unicode::String(kLogoPath));
    } catch (...) {
        // Deliberate: silence, as for every failure of the refresh.
    }
}

void ManufacturerManager::fetchUpdate(const std::string& dataUrl, const marl::unicode::String& logoBase)
{
    const fileString temporary =
        PathUtils::getObject().getManufacturerDataPath() + fileString(kTemporaryFileName);
    if (temporary.pathExists())
        FileUtils::removePath(temporary, kAlsoReadOnly);
    const FileReaper reaper(temporary);
    std::string ignoredReason;
    if (!Curl::get().download_to_location(dataUrl, temporary, ignoredReason))
        return;

    std::map<long, Manufacturer> table;
    ptime lastModified;
    std::string defaultText;
    const bool isRead = read_manufacturer_file(temporary, table, &lastModified, &defaultText);
    if (!isRead || !isNewer(lastModified, *mLastModified))
        return;
    fetchLogos(table, logoBase);
    // Deliberate: all of the service's records replace all of ours, newer ones and our own included.
    mTable.swap(table);
    mDefaultText.swap(defaultText);
    *mLastModified = Library::getTimeNow();
    write_manufacturer_file();
}

/// Fetches the logos of records that are new, or newer than ours, whose old logo goes first.
void ManufacturerManager::fetchLogos(const std::map<long, Manufacturer>& table,
                                     const marl::unicode::String& logoBase) const
{
    for (const auto& [id, record] : table) {
        const fileString logo = record.getManufacturerLogoName();
        const auto current = mTable.find(id);
        const bool isKnown = current != mTable.end();
        if (isKnown && !isNewer(record.getLastModified(), current->second.getLastModified()))
            continue;
        if (!isLogoName(logo))
            continue;
        if (isKnown && isLogoName(current->second.getManufacturerLogoName()))
            FileUtils::removePath(logoFile(current->second.getManufacturerLogoName()));
        fetchLogo(logo, logoBase);
    }
}
