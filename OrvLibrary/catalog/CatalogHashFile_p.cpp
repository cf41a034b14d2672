#include "OrvLibrary/catalog/CatalogHashFile_p.h"

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "OrvLibrary/catalog/CatalogSources_p.h"
#include "OrvLibrary/host/LockingFStream.h"
#include "OrvLibrary/host/StringUtils.h"

namespace LibraryCatalogUpdate {

namespace {

const char kHashFileName[] = "catalog_hash.txt";

/// The whole text of the file, byte for byte; empty when it does not open.
std::string readWhole(const fileString& path)
{
    LockingFStream stream(path, std::ios_base::in);
    if (!stream.is_open())
        return {};
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// Referenced archives are listed with the catalogs that they belong to, but lie in a folder of their own.
fileString fileOfEntry(const fileString& name, const fileString& hashFile)
{
    return catalogFolder(name, hashFile.parentPathWithSeparator()) + name;
}

void addEntry(CatalogMap& catalogs, const std::string& line, const fileString& hashFile)
{
    std::vector<std::string> pieces;
    tokenizeString(line, ':', pieces);
    if (pieces.size() != 2)
        return;
    const fileString name(pieces[0]);
    if (!fileOfEntry(name, hashFile).pathExists())
        return;
    // Deliberate: the record says core, whatever the hash file's category. Gathering re-tags the files of its
    // set; a file that is listed and still there but in no set moves to the core folder's hash file so.
    // Kept by: CatalogHashFile.aRecordOfAnyHashFileSaysCore
    CatalogUpdateData record;
    record.localHash = pieces[1];
    record.serverETag = pieces[1];
    catalogs[name] = record;
}

} // namespace

fileString catalogHashFile(Library::LibraryCategory category)
{
    return getDirectoryPathFromCategory(category) / fileString(kHashFileName);
}

void readCatalogHashMap(CatalogMap& catalogs, Library::LibraryCategory category)
{
    const fileString hashFile = catalogHashFile(category);
    std::istringstream text(readWhole(hashFile));
    text.exceptions(std::ios_base::badbit); // the lack of memory for a line is not the end of the file
    // Deliberate: a blank line ends the file, and what follows it is ignored. A carriage return is part of
    // the tag, so a line of it alone is not blank.
    // Kept by: CatalogHashFile.blankLineEndsTheHashFile
    for (std::string line; std::getline(text, line) && !line.empty();)
        addEntry(catalogs, line, hashFile);
}

void saveCatalogHashMap(const CatalogMap& catalogs, Library::LibraryCategory category)
{
    LockingFStream stream(catalogHashFile(category), std::ios_base::out | std::ios_base::trunc);
    if (!stream.is_open())
        return;
    for (const auto& [name, record] : catalogs) {
        const std::string& tag = record.installed ? record.serverETag : record.localHash;
        if (record.category == category && !tag.empty())
            stream << name << ':' << tag << '\n';
    }
    stream.close();
}

} // namespace LibraryCatalogUpdate
