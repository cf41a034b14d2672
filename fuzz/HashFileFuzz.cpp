// Any text as a hash file. Reading must follow the rules line by line. Writing gives one line per record,
// ordered by name, and reading that again gives the same records.
#include <algorithm>
#include <optional>

#include <unistd.h>

#include "OrvLibrary/catalog/CatalogHashFile_p.h"
#include "fuzz/FuzzSandbox.h"

using namespace LibraryCatalogUpdate;
using fuzz::require;

namespace {

/// The files that an entry may name. Each is searched in the folder for its kind.
const char* const kInstalled[] = {"core/a.orvlib",      "core/b c.orvlib", "core/t.zip",
                                  "core/sub/d.orvlib",  "core/none",       "referenced/u.zip",
                                  "referenced/a.orvlib"};

fuzz::Sandbox& preparedSandbox()
{
    static fuzz::Sandbox& sandbox = []() -> fuzz::Sandbox& {
        for (const char* name : kInstalled)
            test::writeFile(fuzz::Sandbox::get().file(name).toNativeString(), name);
        return fuzz::Sandbox::get();
    }();
    return sandbox;
}

bool hasExtension(const std::string& path, const std::string& extension)
{
    const std::string name = path.substr(path.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    return dot != std::string::npos && dot > 0 && name.substr(dot) == extension;
}

bool isInstalled(const fuzz::Sandbox& sandbox, const std::string& name)
{
    const std::string folder = hasExtension(name, ".zip") ? "referenced/" : "core/";
    const std::string path = sandbox.file(folder).toNativeString() + name;
    return name.find('\0') == std::string::npos && access(path.c_str(), F_OK) == 0;
}

/// The name and tag of a line; none for a line that is skipped.
std::optional<std::pair<std::string, std::string>> splitLine(std::string line)
{
    while (!line.empty() && line.front() == ':')
        line.erase(0, 1);
    while (!line.empty() && line.back() == ':')
        line.pop_back();
    const std::size_t colon = line.find(':');
    if (std::count(line.begin(), line.end(), ':') != 1)
        return std::nullopt;
    return std::make_pair(line.substr(0, colon), line.substr(colon + 1));
}

using Entries = std::map<std::string, std::string>;

Entries expectedEntries(const fuzz::Sandbox& sandbox, const std::string& text)
{
    Entries entries;
    for (const std::string& line : fuzz::linesOf(text)) {
        if (line.empty())
            break;
        const auto entry = splitLine(line);
        if (entry && isInstalled(sandbox, entry->first))
            entries[entry->first] = entry->second;
    }
    return entries;
}

Entries entriesOf(const CatalogMap& catalogs)
{
    Entries entries;
    for (const auto& [name, record] : catalogs) {
        require(record.category == Library::kCoreLibrary && record.localHash == record.serverETag &&
                    record.spare.empty() && record.errorText.empty() && !record.installed &&
                    record.contentLength == 0 && record.responseStatus == 0,
                "a record has both tags from the file and nothing else");
        entries[name.toNativeString()] = record.localHash;
    }
    return entries;
}

std::string textOfEntries(const Entries& entries)
{
    std::string text;
    for (const auto& [name, tag] : entries)
        text += name + ":" + tag + "\n";
    return text;
}

CatalogMap read()
{
    CatalogMap catalogs;
    readCatalogHashMap(catalogs, Library::kCoreLibrary);
    return catalogs;
}

/// Every second record is installed with its own tag.
void checkInstalledTags(const fileString& file, CatalogMap catalogs)
{
    Entries entries;
    bool isInstalled = false;
    for (auto& [name, record] : catalogs) {
        record.installed = isInstalled = !isInstalled;
        record.serverETag = "server's " + name.toNativeString();
        entries[name.toNativeString()] = isInstalled ? record.serverETag : record.localHash;
    }
    saveCatalogHashMap(catalogs, Library::kCoreLibrary);
    require(test::readFile(file) == textOfEntries(entries), "an installed record has the server's tag");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const fuzz::Sandbox& sandbox = preparedSandbox();
    const std::string text = fuzz::textOf(data, size);
    const fileString file = sandbox.write("core/catalog_hash.txt", text);

    const CatalogMap catalogs = read();
    const Entries entries = expectedEntries(sandbox, text);
    require(entriesOf(catalogs) == entries, "the file is read line by line");

    saveCatalogHashMap(catalogs, Library::kCoreLibrary);
    require(test::readFile(file) == textOfEntries(entries), "a line is written for each record");
    require(entriesOf(read()) == entries, "what was written is read again");
    checkInstalledTags(file, catalogs);
    saveCatalogHashMap(catalogs, Library::kBonusLibrary);
    require(test::readFile(sandbox.file("bonus/catalog_hash.txt")).empty(),
            "a category's file has that category's records alone");
    return 0;
}
