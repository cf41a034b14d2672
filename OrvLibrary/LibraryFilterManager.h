#pragma once

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "OrvLibrary/LibraryFilter.h"
#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/UnicodeString.h"
#include "OrvLibrary/host/fileString.h"

/// The user's library filters and the id of the current one. They are stored in "catalog_filters.json" in the
/// core library folder, but only by an explicit call.
///
/// The only instance is made when it is first used, on the thread that uses it, and lives until the process
/// ends. Only one thread may use it at a time.
///
/// A file that is missing, malformed or not writable does not cause an exception; the result is fewer
/// filters, or false. An operation throws only if memory runs out, or if a host service for folders or texts
/// throws. Loading, saving and merging do not throw even then.
class ORVLIBRARY_EXPORT LibraryFilterManager
{
public:
    /// The only instance. The first call loads the filters.
    static LibraryFilterManager& getLibraryFilterManager();

    LibraryFilterManager(const LibraryFilterManager&) = delete;
    LibraryFilterManager& operator=(const LibraryFilterManager&) = delete;

    /// Replaces the filters and the current id with the content of the file. If the file is missing or
    /// unreadable, there are no filters and no current one.
    void loadFilters();
    /// Writes the filters and the current id to the file. An empty list is not written, so the old filters
    /// return with the next load.
    void saveFilters();

    /// "catalog_filters.json".
    marl::unicode::String getFilterFilename() const;
    /// The file in the core library folder.
    fileString getFilterFullname() const;

    /// The current list. The reference is valid until a call changes the list.
    const std::vector<LibraryFilter>& getLibraryFilters() const { return mFilters; }
    void setLibraryFilters(const std::vector<LibraryFilter>& filters);

    /// Sets the current id. It is not checked and may belong to no filter.
    void setCurrentFilterId(long id);
    /// -1 if there is none.
    long getCurrentFilterId() const { return mCurrentFilterId; }
    /// Whether the current id is not -1, even if no filter has this id.
    bool hasActiveFilter() const { return mCurrentFilterId != -1; }

    /// The first filter in the list with this id; a default one if there is none.
    static LibraryFilter getLibraryFilterFromId(long id, const std::vector<LibraryFilter>& filters);
    /// Whether the current filter contains the database, compared byte by byte. After a change, the first
    /// call takes time proportional to the number of the filter's databases; later calls do not.
    bool isFilteredDatabase(const std::string& databaseId) const;
    /// The databases of the current filter; empty if there is none.
    std::vector<std::string> getCurrentFilteredDatabases() const;
    /// Removes the first occurrence of the database from each filter.
    void removeIdFromLibraryFilters(const std::string& databaseId);

    /// Adds the filters to another filter file and then takes over the content of that file, with its current
    /// id. Filters with a name and list that the file already has are left out. All others get the lowest
    /// free ids, from 0 up. If a name is taken, the filter gets the first free one of "name 1", "name 2" and
    /// so on. The manager's own file is not written.
    /// @return false, with nothing changed, if the other file could not be written, or exists and could not
    /// be read. The user gets a message in both cases. A file that is not JSON is overwritten.
    bool mergeFilters(const fileString& path);

    /// The name of the current filter, UTF-8. If there is none, the translated label for no filter.
    std::string getCurrentFilterString() const;
    /// The list for a chooser: the label for no filter, then the names of all filters.
    std::vector<std::string> getFilterStrings() const;

    /// Writes a filter file and replaces the old one. If the file exists and cannot be written, the user gets
    /// a message. Uses no data of the manager; may be called from any thread.
    /// @param currentFilterId -1 for none
    /// @return whether the file was written; if not, it is unchanged
    static bool saveFiltersToFile(const fileString& path, const std::vector<LibraryFilter>& filters,
                                  long currentFilterId);
    /// Appends the filters of a file to `filters`, beginning with the last one in the file, and stops at the
    /// first malformed one. Leaves out filters with the id -1 or without a name. Uses no data of the manager;
    /// may be called from any thread.
    /// @return the current id in the file; -1 if there is none or the file cannot be read
    static long loadFiltersFromFile(const fileString& path, std::vector<LibraryFilter>& filters);
    /// Whether loading can read the file to its end. If not, the next save keeps only the part that was read,
    /// so a host may want to make a copy first. May be called from any thread.
    static bool isWhollyReadable(const fileString& path);

private:
    /// The result of reading a file.
    enum class Reading
    {
        Whole,        ///< also for a missing file
        Partial,      ///< up to something malformed
        Impossible,   ///< the file exists, but cannot be opened or read, or is too large
        WithoutMemory ///< memory ran out; nothing is known about the file
    };

    LibraryFilterManager();
    /// Null if there is none.
    const LibraryFilter* currentFilter() const;
    /// Call it before changing the filters or the current id.
    void forgetCurrentDatabases();
    /// Tells the user if the file exists and cannot be written.
    static bool isRefused(const fileString& path);
    static void tellThatFileCannotBeWritten(const fileString& path);
    static Reading readFilters(const fileString& path, std::vector<LibraryFilter>& filters, long& currentId);

    long mCurrentFilterId = -1;
    std::vector<LibraryFilter> mFilters;
    /// The databases of the current filter, for fast look-up; null until it is needed.
    mutable std::unique_ptr<const std::unordered_set<std::string>> mCurrentDatabases;
};
