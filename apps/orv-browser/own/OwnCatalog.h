#pragma once

#include <vector>

#include <QString>

#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/models/ItemDrag.h"

/// Changes of what a library of the user's own holds; docs/formats/catalog-database.md describes the file. A
/// change is made on a copy, which takes the place of the library by one rename. So a program that reads
/// the library meanwhile, or starts after a kill, sees it as it was or as it becomes. Changes that another
/// program makes meanwhile are not lost. Functions run for a while, on any thread; the caller holds the lock
/// of the own libraries. They throw std::runtime_error with a reason for people; nothing has changed then.
namespace OwnCatalog {

enum class Entry
{
    Item,
    Folder
};

/// Items that were taken out of a library, with all that the library knew of them.
class KeptItems
{
public:
    explicit KeptItems(std::vector<long long> chosen);

    std::vector<long long> ids; ///< by which they are, or were, in the library
    fileString file;            ///< a database of the items, below the temporary folder

private:
    FileReaper mGuard;
};

/// Makes a library without items.
void create(const fileString& database);
/// Copies items of any catalogs into a folder, all or none. The numbers of the manufacturers go along as they
/// are.
/// @param folder -1 for the first folder at the top, which is made where there is none
/// @return the ids of the copies
std::vector<long long> copyItems(const fileString& database, long long folder,
                                 const std::vector<ItemDrag::Item>& items);
/// Takes the items out that are still there.
void takeOut(const fileString& database, KeptItems& items);
/// Puts back what was taken out. An item whose id or folder is not free any more gets another one.
void putBack(const fileString& database, KeptItems& items);
/// @return the former name
QString rename(const fileString& database, Entry entry, long long id, const QString& name);

} // namespace OwnCatalog
