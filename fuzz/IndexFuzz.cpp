// Any text as a core content index. Each line that names a catalog must give the path by the rules. The
// catalog's destination must be directly in its folder, whatever the name is.
#include "OrvLibrary/catalog/CatalogIndex_p.h"
#include "OrvLibrary/host/PathUtils.h"
#include "fuzz/FuzzSandbox.h"

using fuzz::require;

namespace {

std::string extensionOf(const std::string& path)
{
    const std::string name = path.substr(path.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 || name == ".." ? "" : name.substr(dot);
}

std::set<std::string> expectedPaths(const std::string& core, const std::string& referenced,
                                    const std::string& index)
{
    std::set<std::string> paths;
    for (const std::string& line : fuzz::linesOf(index)) {
        std::string name;
        for (const char c : line)
            name += c == '\r' ? "" : std::string(1, c);
        const std::string extension = extensionOf(name);
        if (extension == ".zip")
            paths.insert(referenced + name);
        else if (extension == ".orvlib" || extension == ".orvlibz")
            paths.insert(core + name);
    }
    return paths;
}

/// Checks the destination of a catalog with this path.
void checkDestination(const fileString& file, const fileString& folder)
{
    const fileString key = file.stemWithExtension();
    const std::string& name = key.toNativeString();
    require(!name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos,
            "a catalog's key is the name of a file");
    require((folder / key).parentPathWithSeparator() == folder, "a destination lies directly in its folder");
    const std::string rest = file.toNativeString().substr(folder.toNativeString().size());
    require(rest.find('/') != std::string::npos || file == folder / key,
            "a plain name is looked for where it is installed");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Sandbox::get();
    const std::string index = fuzz::textOf(data, size);
    const PathUtils& paths = PathUtils::getObject();
    const fileString core = paths.getCoreLibraryDatabasePath();
    const fileString referenced = paths.getProprietaryLibraryReferencedFilesPath();

    std::set<fileString> files;
    LibraryCatalogUpdate::addIndexEntries(index, files);
    std::set<std::string> found;
    for (const fileString& file : files) {
        found.insert(file.toNativeString());
        checkDestination(file, file.extension() == fileString(".zip") ? referenced : core);
    }
    require(found == expectedPaths(core.toNativeString(), referenced.toNativeString(), index),
            "the index is read line by line");
    return 0;
}
