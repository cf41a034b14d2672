// Reads the manufacturer file.
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"

#include "OrvLibrary/Manufacturer/ManufacturerFileKeys_p.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/StringTable.h"
#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/TimeUtils.h"
#include "OrvLibrary/json/json_file.h"

using boost::posix_time::ptime;
using namespace ManufacturerFileKeys;

namespace {

/// The content of a manufacturer file.
struct Content
{
    std::map<long, Manufacturer> table;
    ptime lastModified;
    std::string defaultText;
};

/// The member with this key; null if there is none.
/// @throws boost::bad_any_cast if it has another type
template <class Type>
const Type* member(const json::object& object, const char* key)
{
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &boost::any_cast<const Type&>(*found->second);
}

std::string text(const json::object& object, const char* key)
{
    const auto* found = member<std::string>(object, key);
    return found ? *found : std::string();
}

bool flag(const json::object& object, const char* key)
{
    const auto* found = member<bool>(object, key);
    return found && *found;
}

/// Makes the record in the table. If the table already has this id, only checks that the record is
/// well-formed.
void readRecord(const json::object& object, long id, std::map<long, Manufacturer>& table)
{
    const auto* time = member<std::string>(object, kLastModified);
    table.try_emplace(id, text(object, kName), text(object, kUrl), text(object, kPhone), text(object, kFax),
                      text(object, kLogo), text(object, kEmail), flag(object, kLock), flag(object, kDeleted),
                      time ? Library::fromString(*time) : ptime());
}

/// The tree returns equal keys in reverse order, so the first record of an id is the last one in the file.
std::map<long, Manufacturer> readRecords(const json::object& root)
{
    // Deliberate: a later record replaces an earlier one with the same id, without a warning.
    // Kept by: ManufacturerManagerLoad.laterRecordOfAnIdReplacesTheEarlierOne
    std::map<long, Manufacturer> table;
    for (auto [entry, end] = root.equal_range(kManufacturer); entry != end; ++entry) {
        const auto& object = boost::any_cast<const json::object&>(*entry->second);
        if (const int* id = member<int>(object, kId))
            readRecord(object, *id, table);
    }
    return table;
}

Content readContent(const json::object& root)
{
    Content content;
    const auto* time = member<std::string>(root, kLastModified);
    content.lastModified = time ? Library::fromString(*time) : Library::getTimeNow();
    const auto* defaultText = member<std::string>(root, kDefaultText);
    content.defaultText =
        defaultText ? *defaultText : StringUtils::loadString(TextId::kDefaultManufacturerText);
    content.table = readRecords(root);
    return content;
}

} // namespace

fileString ManufacturerManager::get_manufacturer_fullname()
{
    const fileString folder = PathUtils::getObject().getManufacturerDataPath();
    if (!folder.pathExists())
        FileUtils::createDirectoriesWithPerm(folder, false);
    return folder / fileString(kFileName);
}

bool ManufacturerManager::read_manufacturer_file(const fileString& path, std::map<long, Manufacturer>& table,
                                                 ptime* lastModified, std::string* defaultText)
{
    if (!lastModified || !defaultText)
        NullPointerRaiser::Throw(lastModified ? "defaultText" : "lastModified", __FILE__, __LINE__);
    if (!path.pathExists())
        return false;
    table.clear();
    try {
        const auto root = json::readFile(path);
        const auto* members = boost::any_cast<json::object>(root.get());
        if (!members)
            return false;
        Content content = readContent(*members);
        table.swap(content.table);
        *lastModified = content.lastModified;
        defaultText->swap(content.defaultText);
        return true;
    } catch (...) {
        *lastModified = ptime(boost::date_time::min_date_time);
        defaultText->clear();
        return false;
    }
}

void ManufacturerManager::loadManufacturers()
{
    std::map<long, Manufacturer> table;
    try {
        read_manufacturer_file(get_manufacturer_fullname(), table, mLastModified.get(), &mDefaultText);
    } catch (...) {
        // The host could not name the file, so the table stays empty.
    }
    mTable.swap(table);
}

bool ManufacturerManager::changeManufacturerDataPath(const fileString& folder)
{
    std::map<long, Manufacturer> table;
    ptime lastModified;
    std::string defaultText;
    // Deliberate: no separator is added between folder and name; and files are still written to the standard
    // folder.
    // Kept by: ManufacturerManagerTest.folderIsJoinedWithoutASeparator,
    // ManufacturerManagerTest.writesGoToTheStandardFolderAfterAChange
    if (!read_manufacturer_file(folder + fileString(kFileName), table, &lastModified, &defaultText))
        return false;
    mTable.swap(table);
    *mLastModified = lastModified;
    mDefaultText.swap(defaultText);
    return true;
}
