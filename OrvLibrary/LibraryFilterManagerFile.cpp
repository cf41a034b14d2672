// Reads and writes the filter file.
#include "OrvLibrary/LibraryFilterManager.h"

#include <new>
#include <utility>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/json/json_file.h"
#include "OrvLibrary/json/json_writer.h"

namespace {

constexpr char kCurrentFilter[] = "Current_Filter";
constexpr char kFilter[] = "Filter";
constexpr char kFilterName[] = "Filter_Name";
constexpr char kFilterId[] = "Filter_Id";
constexpr char kDatabaseIds[] = "Database_Ids";

json_writer::Object filterObject(const LibraryFilter& filter)
{
    json_writer::Array ids;
    for (const std::string& id : filter.getDatabaseIds())
        ids.add_element(id);
    json_writer::Object object;
    object.add_element(kFilterName, filter.getFilterName());
    object.add_element<long>(kFilterId, filter.getFilterId());
    object.add_element(kDatabaseIds, std::move(ids));
    return object;
}

/// Deliberate: the filters are not an array, but members with the same key.
/// Kept by: LibraryFilterManagerFile.savedFileHasTheMembersInOrder
json_writer::Object document(const std::vector<LibraryFilter>& filters, long currentFilterId)
{
    json_writer::Object root;
    root.add_element<long>(kCurrentFilter, currentFilterId);
    for (const LibraryFilter& filter : filters)
        root.add_element(kFilter, filterObject(filter));
    return root;
}

/// The member with this key, or `missing`.
/// @throws boost::bad_any_cast if it has another type
template <class Type>
Type optionalMember(const json::object& object, const std::string& key, const Type& missing)
{
    const auto member = object.find(key);
    return member == object.end() ? missing : boost::any_cast<const Type&>(*member->second);
}

/// Reads one filter. A filter without a list of databases is malformed and ends the reading of the file.
/// @throws boost::bad_any_cast
LibraryFilter readFilter(const json::object& object)
{
    const auto name = optionalMember<std::string>(object, kFilterName, {});
    const long id = optionalMember<int>(object, kFilterId, -1);
    const auto list = object.find(kDatabaseIds);
    if (list == object.end())
        throw boost::bad_any_cast();
    std::vector<std::string> ids;
    for (const auto& element : boost::any_cast<const json::array&>(*list->second))
        ids.push_back(boost::any_cast<const std::string&>(*element));
    return LibraryFilter(name, id, ids);
}

/// Deliberate: the order is that of the tree, in which the last filter of the file comes first. So every load
/// reverses the list.
/// Kept by: LibraryFilterManagerFile.everyLoadTurnsTheListRound
void readMembers(const json::object& root, std::vector<LibraryFilter>& filters)
{
    for (auto [member, end] = root.equal_range(kFilter); member != end; ++member) {
        LibraryFilter filter = readFilter(boost::any_cast<const json::object&>(*member->second));
        if (filter.getFilterId() != -1 && !filter.getFilterName().empty())
            filters.push_back(std::move(filter));
    }
}

/// Reads a file up to the first malformed part.
/// @param currentId unchanged if the file has none
/// @throws any exception of the file system or the tree; the outputs then hold what came before
void readFile(const fileString& path, std::vector<LibraryFilter>& filters, long& currentId)
{
    const auto root = json::readFile(path);
    const auto& members = boost::any_cast<const json::object&>(*root);
    currentId = optionalMember<int>(members, kCurrentFilter, -1);
    readMembers(members, filters);
}

} // namespace

bool LibraryFilterManager::saveFiltersToFile(const fileString& path,
                                             const std::vector<LibraryFilter>& filters, long currentFilterId)
try {
    const json_writer::Object root = document(filters, currentFilterId);
    if (isRefused(path))
        return false;
    json_writer::write_file(path.unicodeString().toUTF8String(), root);
    FileUtils::setFilePermission(path);
    return true;
} catch (...) {
    return false;
}

bool LibraryFilterManager::isRefused(const fileString& path)
{
    if (!path.pathExists() || FileUtils::canWriteFile(path))
        return false;
    tellThatFileCannotBeWritten(path);
    return true;
}

void LibraryFilterManager::tellThatFileCannotBeWritten(const fileString& path)
{
    error::MessagingSystem::control().notify(__FILE__, __LINE__, error::ErrorMinimalTrait(),
                                             error::Message::kCannotWriteDataFile, path.unicodeString(), {},
                                             {});
}

long LibraryFilterManager::loadFiltersFromFile(const fileString& path, std::vector<LibraryFilter>& filters)
{
    long currentId = -1;
    // Deliberate: no message. The filters read before the failure count.
    // Kept by: LibraryFilterManagerFile.malformedFilterStopsTheLoadThere
    readFilters(path, filters, currentId);
    return currentId;
}

bool LibraryFilterManager::isWhollyReadable(const fileString& path)
{
    std::vector<LibraryFilter> filters;
    long currentId = -1;
    return path.pathExists() && readFilters(path, filters, currentId) == Reading::Whole;
}

LibraryFilterManager::Reading LibraryFilterManager::readFilters(const fileString& path,
                                                                std::vector<LibraryFilter>& filters,
                                                                long& currentId)
{
    try {
        if (path.pathExists())
            readFile(path, filters, currentId);
        return Reading::Whole;
    } catch (const boost::bad_any_cast&) {
        return Reading::Partial;
    } catch (const std::bad_alloc&) {
        return Reading::WithoutMemory;
    } catch (...) {
        return Reading::Impossible;
    }
}
