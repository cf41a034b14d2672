// How it works: the web service's file is downloaded beside ours and read. If it is newer, the logos of new
// and newer records are downloaded, then its records replace ours, and our file is written. Names of logos
// come from the service, so each is checked before a file is removed or written.
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"

#include <algorithm>
#include <filesystem>
#include <set>

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

/// The time; the earliest time if it is not a date, so that everything else is newer.
ptime dateOf(const ptime& time)
{
    return time.is_not_a_date_time() ? ptime(boost::date_time::min_date_time) : time;
}

bool isNewer(const ptime& time, const ptime& than)
{
    return dateOf(time) > dateOf(than);
}

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

bool startsWith(const std::string& text, const std::string& start)
{
    return text.compare(0, start.size(), start) == 0;
}

bool endsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// The path in its shortest form, so that two names of one file are equal: "./b/../a.png" becomes "a.png".
std::string plainName(const fileString& logo)
{
    return std::filesystem::path(logo.toNativeString()).lexically_normal().native();
}

/// Whether the name is one of our own files in the folder. Ignores letter case, because the file system may
/// do so.
bool isOwnFile(const std::string& name)
{
    const std::string lower = lowerCase(name);
    return startsWith(lower, kFileName) || lower == kTemporaryFileName || endsWith(lower, ".orv-new");
}

/// Whether the name is a file in the manufacturer folder and not one of our own. The web service chooses the
/// names of logos. It must not make us delete or write other files, or the data file.
bool isLogoName(const fileString& logo)
{
    const std::string& name = logo.toNativeString();
    const std::filesystem::path path(plainName(logo));
    if (name.empty() || name.find('\0') != std::string::npos || path.is_absolute() || !path.has_filename())
        return false;
    return *path.begin() != ".." && path != "." && !isOwnFile(path.native());
}

std::set<std::string> logoNames(const std::map<long, Manufacturer>& table)
{
    std::set<std::string> names;
    for (const auto& [id, record] : table)
        names.insert(plainName(record.getManufacturerLogoName()));
    return names;
}

fileString logoFile(const fileString& logo)
{
    return PathUtils::getObject().getManufacturerDataPath() / logo;
}

/// If this fails, the folder stays unchanged.
void fetchLogo(const fileString& logo, const marl::unicode::String& logoBase)
try {
    std::string ignoredReason;
    Curl::get().download_to_location(StringUtils::toWin1252(logoBase + logo.unicodeString()), logoFile(logo),
                                     ignoredReason);
} catch (...) {
    // The logo fails if its download throws. The others are still downloaded.
}

} // namespace

void ManufacturerManager::checkForManufacturerUpdates(const marl::unicode::String& dataUrl,
                                                      const marl::unicode::String& logoUrl)
{
    try {
        fetchUpdate(StringUtils::toWin1252(dataUrl), logoUrl + marl::unicode::String(kLogoPath));
    } catch (...) {
        // Deliberate: no message, as for every failure of the refresh.
        // Kept by: ManufacturerManagerFault.aRefreshEndsQuietlyWhicheverCallThrows
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
    // Deliberate: the web service's records replace all of ours, even newer ones and those the user made.
    // Kept by: ManufacturerManagerUpdate.newerFileReplacesTheTable
    mTable.swap(table);
    mDefaultText.swap(defaultText);
    *mLastModified = Library::getTimeNow();
    write_manufacturer_file();
}

/// Downloads the logos of records that are new, or newer than ours. The old logo of a newer record is removed
/// first, except if a record of the new table uses it; that logo is replaced when the new one has arrived.
void ManufacturerManager::fetchLogos(const std::map<long, Manufacturer>& table,
                                     const marl::unicode::String& logoBase) const
{
    const std::set<std::string> wanted = logoNames(table);
    for (const auto& [id, record] : table) {
        const fileString logo = record.getManufacturerLogoName();
        const auto current = mTable.find(id);
        const bool isKnown = current != mTable.end();
        if (isKnown && !isNewer(record.getLastModified(), current->second.getLastModified()))
            continue;
        if (!isLogoName(logo))
            continue;
        const fileString old = isKnown ? current->second.getManufacturerLogoName() : fileString();
        if (isLogoName(old) && wanted.count(plainName(old)) == 0)
            FileUtils::removePath(logoFile(old));
        fetchLogo(logo, logoBase);
    }
}
