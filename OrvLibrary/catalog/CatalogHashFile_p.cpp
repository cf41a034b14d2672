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

/// The content of the file, byte for byte; empty if it cannot be opened.
std::string readWhole(const fileString& path)
{
    LockingFStream stream(path, std::ios_base::in);
    if (!stream.is_open())
        return {};
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// Referenced archives are listed with the catalogs that need them, but have their own folder.
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
    // Deliberate: the record says core for every hash file. Gathering later corrects the category of files in
    // its sets. A file that is listed and exists, but is in no set, thus moves to the hash file of the core
    // folder.
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
    text.exceptions(std::ios_base::badbit); // for lack of memory getline would just stop; now it throws
    // Deliberate: a blank line ends the file; the rest is ignored. A carriage return belongs to the tag, so a
    // line with nothing else is not blank.
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
