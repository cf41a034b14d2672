#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/LibraryFilterManager.h"

namespace OrvHost {

/// One change of the filters: it takes the lock, reads the file anew, and writes it at the end. Programs that
/// change filters in this way lose nothing of each other's changes. For example:
///
///     FilterChange change;
///     change.use(4);
///     change.save();
///
/// The object changes the library's one filter manager, so it is used on the manager's thread. It needs the
/// host's services. A change that is not saved leaves the manager changed and the file as it was; the next
/// `FilterChange` reads the file again.
class ORVHOST_EXPORT FilterChange
{
public:
    using Filters = std::vector<LibraryFilter>;

    /// The id that stands for no filter.
    static constexpr long kNoFilter = -1;

    /// Waits at most five seconds for other programs.
    /// @param other another filter file that changes with them; empty for none
    /// @throws std::runtime_error when another program does not come to its end, or when the file was read in
    /// one way now and in another then, so that a change would lose filters
    explicit FilterChange(const fileString& other = {});

    /// The manager, which holds what the file holds now. It may be changed directly, too.
    LibraryFilterManager& filters() { return mFilters; }

    /// Makes a filter the current one; `kNoFilter` for none.
    /// @throws std::runtime_error when no filter has the id
    void use(long id);
    /// Adds a filter before the others, so that the newest comes first.
    /// @param wantedId its id; without one, the lowest free id from 0 up
    /// @return its id
    /// @throws std::runtime_error when another filter has the id or the name
    long add(const std::string& name, const std::vector<std::string>& databases,
             std::optional<long> wantedId = std::nullopt);
    /// Removes the first filter that has the id. If it was the current one, there is none afterwards.
    /// @throws std::runtime_error when no filter has the id
    void remove(long id);
    /// Removes the first entry of a database from each filter.
    /// @return how many entries there were
    /// @throws std::runtime_error when there is a filter file of which nothing could be read
    std::size_t dropDatabase(const std::string& database);

    /// Does to the filters what an editor did to a copy of them: removes what it removed, replaces what it
    /// changed, and adds what it added, under another id where its own is taken meanwhile. What other
    /// programs changed since the copy was made stays. A current filter that is gone is none afterwards.
    /// @param before the copy as it was when the editor began
    /// @param after the copy as the editor left it
    void apply(const Filters& before, const Filters& after);

    /// How the filters come back from the file, which is read from its end.
    enum class Order
    {
        Kept,  ///< as the manager holds them
        Turned ///< the other way round, as after the library's own save
    };
    /// Writes list and current id, an empty list too, and reads them back as a fresh start would.
    /// @return the copy that keeps what the library could not read of the file, for the user to be told;
    /// empty when it could read all
    /// @throws std::runtime_error when the file, or the copy, cannot be written
    fileString save(Order order = Order::Kept);

    /// To be called before a filter file is written: keeps a copy of one that exists and that the library
    /// cannot read as a whole.
    /// @return the copy; empty when none was needed
    /// @throws std::runtime_error when the file cannot be written, or the copy cannot be made
    static fileString prepareToOverwrite(const fileString& path);

    /// Whether a filter is in force. A current id that no filter has, as after another program removed that
    /// filter, is no filter to a user: a browser shows every catalog then.
    static bool isFiltering(const LibraryFilterManager& filters);

private:
    bool hasId(long id) const;
    void demandId(long id) const;

    std::vector<HostLock> mLocks;
    LibraryFilterManager& mFilters;
};

} // namespace OrvHost
