#pragma once

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "OrvLibrary/LibraryFilter.h"
#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/UnicodeString.h"
#include "OrvLibrary/host/fileString.h"

/// The user's library filters and the choice of the current one, kept in "catalog_filters.json" in the core
/// library folder. Nothing is saved but by an explicit call.
///
/// The one instance is made at the first use, on whatever thread that is, and lives to the end of the
/// process; it is used by one thread at a time.
///
/// A file that is missing, malformed or cannot be written is no exception: it ends as fewer filters, or as a
/// result of false. An operation throws only where memory runs out or where a host service, the folders or
/// the texts, throws; loading, saving and merging do not even then.
class ORVLIBRARY_EXPORT LibraryFilterManager
{
public:
    /// The one instance; the first call loads the filters.
    static LibraryFilterManager& getLibraryFilterManager();

    LibraryFilterManager(const LibraryFilterManager&) = delete;
    LibraryFilterManager& operator=(const LibraryFilterManager&) = delete;

    /// Replaces filters and current id with what the file holds. A missing or unreadable file leaves no
    /// filter and no current one.
    void loadFilters();
    /// Writes filters and current id to the file. An empty list is not written: the filters in the file
    /// return with the next load.
    void saveFilters();

    /// "catalog_filters.json".
    marl::unicode::String getFilterFilename() const;
    /// The file in the core library folder.
    fileString getFilterFullname() const;

    /// The filters as loaded or set. The reference holds until the next call that changes the list.
    const std::vector<LibraryFilter>& getLibraryFilters() const { return mFilters; }
    void setLibraryFilters(const std::vector<LibraryFilter>& filters);

    /// Stores the id unchecked: it may name no filter at all.
    void setCurrentFilterId(long id);
    /// -1 when there is none.
    long getCurrentFilterId() const { return mCurrentFilterId; }
    /// Whether the current id is another than -1, also where no filter has that id.
    bool hasActiveFilter() const { return mCurrentFilterId != -1; }

    /// The first filter of the list with that id; a default one when there is none.
    static LibraryFilter getLibraryFilterFromId(long id, const std::vector<LibraryFilter>& filters);
    /// Whether the current filter names the database, byte by byte. The first question after a change takes
    /// time with the number of the filter's databases, further ones do not.
    bool isFilteredDatabase(const std::string& databaseId) const;
    /// The databases of the current filter; none without one.
    std::vector<std::string> getCurrentFilteredDatabases() const;
    /// Removes the first entry of the database from each filter.
    void removeIdFromLibraryFilters(const std::string& databaseId);

    /// Adds the filters to those of another filter file and takes over the result, with the other file's
    /// current id. Filters that the file has already, by name and list, are left out; the others get the
    /// lowest free ids from 0 up and, where their name is taken, the first free "name 1", "name 2" and so on.
    /// The manager's own file is not written.
    /// @return false, with nothing changed, when the other file could not be written or is there but could
    /// not be read. The user is told of both. A file whose text is no JSON is overwritten.
    bool mergeFilters(const fileString& path);

    /// The name of the current filter, UTF-8; the translated label for no filter without one.
    std::string getCurrentFilterString() const;
    /// The label for no filter, then the names of all filters: what a chooser shows.
    std::vector<std::string> getFilterStrings() const;

    /// Writes a filter file, replacing it as a whole. For a file that exists but cannot be written the user
    /// is told. Uses nothing of the manager; may be called from any thread.
    /// @param currentFilterId -1 for none
    /// @return whether the file was written; on failure it is as it was
    static bool saveFiltersToFile(const fileString& path, const std::vector<LibraryFilter>& filters,
                                  long currentFilterId);
    /// Appends the filters of a file to `filters`, the last one in the file first, up to the first that is
    /// malformed. Filters with the id -1 or without a name are left out. Uses nothing of the manager; may be
    /// called from any thread.
    /// @return the current id that the file names; -1 when it names none or cannot be read
    static long loadFiltersFromFile(const fileString& path, std::vector<LibraryFilter>& filters);
    /// Whether loading reads the file to its end. Of a file of which it does not, the next save keeps only
    /// what was read: a host may want to keep a copy. May be called from any thread.
    static bool isWhollyReadable(const fileString& path);

private:
    /// How a reading ended.
    enum class Reading
    {
        Whole,        ///< also of a missing file
        Partial,      ///< up to something malformed
        Impossible,   ///< the file is there but cannot be opened or read, or is too large
        WithoutMemory ///< says nothing of the file
    };

    LibraryFilterManager();
    /// Null when there is none.
    const LibraryFilter* currentFilter() const;
    /// To be called before anything changes the filters or the current id.
    void forgetCurrentDatabases();
    /// Tells the user of a file that is there and cannot be written.
    static bool isRefused(const fileString& path);
    static void tellThatFileCannotBeWritten(const fileString& path);
    static Reading readFilters(const fileString& path, std::vector<LibraryFilter>& filters, long& currentId);

    long mCurrentFilterId = -1;
    std::vector<LibraryFilter> mFilters;
    /// The databases of the current filter, by which questions are answered; null until one is asked.
    mutable std::unique_ptr<const std::unordered_set<std::string>> mCurrentDatabases;
};
