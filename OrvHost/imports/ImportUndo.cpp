#include "OrvHost/imports/ImportUndo.h"

#include <stdexcept>

#include "OrvHost/imports/FormerImports_p.h"

namespace OrvHost {

namespace {

ImportUndo::Import importOf(const ImportEntry& entry)
{
    ImportUndo::Import import;
    import.name = entry.name;
    if (const ImportPart* library = entry.part("library"))
        import.library = entry.path(*library);
    if (const ImportPart* textures = entry.part("textures"))
        import.textures = entry.path(*textures);
    return import;
}

/// The import that `run` takes back, or whose undo it ends. None if the record cannot be read; `run` reports
/// that.
std::optional<ImportEntry> lastOf(const fileString& root)
{
    try {
        const std::vector<ImportEntry> entries = ImportRecord::read(FormerImports::folderOf(root));
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            if (entry->state != ImportEntry::State::Begun || entry->hasTakenPlace())
                return *entry;
        }
    } catch (const std::exception&) {
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace

ImportUndo::ImportUndo(const fileString& root) : mRoot(root) {}

std::optional<ImportUndo::Import> ImportUndo::last() const
{
    const std::optional<ImportEntry> entry = lastOf(mRoot);
    return entry ? std::optional(importOf(*entry)) : std::nullopt;
}

std::string ImportUndo::refusal() const
{
    const std::optional<ImportEntry> entry = lastOf(mRoot);
    // An import that did not end has recorded no files to compare with.
    return entry && entry->state == ImportEntry::State::Done ? FormerImports::refusalOf(*entry)
                                                             : std::string();
}

ImportUndo::Import ImportUndo::run()
{
    const char* const kNone = "there is no import to take back";
    // Checked first, so that no folder is created if there never was an import.
    if (ImportRecord::read(FormerImports::folderOf(mRoot)).empty())
        throw std::runtime_error(kNone);
    FormerImports former(mRoot, nullptr);
    if (former.completedUndo())
        return importOf(*former.completedUndo());
    if (former.entries().empty())
        throw std::runtime_error(kNone);
    const Import import = importOf(former.entries().back());
    former.undoLast();
    return import;
}

} // namespace OrvHost
