#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/LibraryFilterManager.h"

namespace OrvHost {

/// One change of the filters: takes the lock, reads the file again, and writes it at the end. Programs that
/// change filters in this way do not lose each other's changes. Example:
///
///     FilterChange change;
///     change.use(4);
///     change.save();
///
/// The object changes the library's only filter manager, so use it on that manager's thread. It needs the
/// host's services. Without `save` the manager has changed, but not the file; the next `FilterChange` reads
/// the file again.
class ORVHOST_EXPORT FilterChange
{
public:
    using Filters = std::vector<LibraryFilter>;

    /// The id for no filter.
    static constexpr long kNoFilter = -1;

    /// Waits at most five seconds for other programs.
    /// @param other another filter file that will change, too; may be empty
    /// @throws std::runtime_error if another program has the lock too long, or if two readings of the file
    /// differ, so that the change would lose filters
    explicit FilterChange(const fileString& other = {});

    /// The manager with the content of the file. You may also change it directly.
    LibraryFilterManager& filters() { return mFilters; }

    /// Makes a filter the current one; `kNoFilter` for none.
    /// @throws std::runtime_error if no filter has this id
    void use(long id);
    /// Adds a filter before the others, so that the newest is first.
    /// @param wantedId its id; if empty, the lowest free id from 0 up
    /// @return its id
    /// @throws std::runtime_error if another filter has this id or name
    long add(const std::string& name, const std::vector<std::string>& databases,
             std::optional<long> wantedId = std::nullopt);
    /// Removes the first filter with this id. If it was the current one, there is no current filter
    /// afterwards.
    /// @throws std::runtime_error if no filter has this id
    void remove(long id);
    /// Removes the first occurrence of a database from each filter.
    /// @return the number of removed entries
    /// @throws std::runtime_error if a filter file exists and nothing in it could be read
    std::size_t dropDatabase(const std::string& database);

    /// Applies the changes of an editor that worked on a copy of the filters: removes, replaces and adds what
    /// the editor did. A new filter gets another id if its own has been taken meanwhile. Changes that other
    /// programs have made since the copy stay. If the current filter is gone, there is none afterwards.
    /// @param before the copy when the editor began
    /// @param after the copy when the editor ended
    void apply(const Filters& before, const Filters& after);

    /// The order of the filters after the next load, which begins at the end of the file.
    enum class Order
    {
        Kept,  ///< as in the manager
        Turned ///< reversed, as after the library's own save
    };
    /// Writes the list and the current id, even if the list is empty, and reads them again as a new program
    /// would.
    /// @return the copy of the former file, if the library could not read all of it, to tell the user;
    /// otherwise empty
    /// @throws std::runtime_error if the file or the copy cannot be written
    fileString save(Order order = Order::Kept);

    /// Call it before writing a filter file. Keeps a copy of an existing file that the library cannot read
    /// completely.
    /// @return the copy; empty if none was needed
    /// @throws std::runtime_error if the file cannot be written or the copy cannot be made
    static fileString prepareToOverwrite(const fileString& path);

    /// Whether a filter is active for the user. If no filter has the current id, because another program
    /// removed it, none is: the browser then shows every catalog.
    static bool isFiltering(const LibraryFilterManager& filters);

private:
    bool hasId(long id) const;
    void demandId(long id) const;

    std::vector<HostLock> mLocks;
    LibraryFilterManager& mFilters;
};

} // namespace OrvHost
