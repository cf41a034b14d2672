// How it works: each action that changes something begins a `FilterChange`, which locks and reads the file,
// changes the list and prints the result of saving it. The document begins with the current filters, so that
// it shows them even if the action fails.
#include "apps/orv-library/records/FiltersCommand.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

#include <QJsonArray>

#include "OrvHost/records/FilterChange.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-library/Session.h"

namespace {

using Filters = std::vector<LibraryFilter>;

constexpr long kNone = -1;

QJsonArray jsonArray(const std::vector<std::string>& texts)
{
    QJsonArray array;
    for (const std::string& text : texts)
        array.append(jsonText(text));
    return array;
}

QJsonObject document(const LibraryFilter& filter)
{
    return {{"id", static_cast<qint64>(filter.getFilterId())},
            {"name", jsonText(filter.getFilterName())},
            {"databases", jsonArray(filter.getDatabaseIds())}};
}

std::string line(const LibraryFilter& filter)
{
    std::string text = std::to_string(filter.getFilterId()) + "  " + filter.getFilterName() + ":";
    for (const std::string& database : filter.getDatabaseIds())
        text += " " + database;
    return text + "\n";
}

QJsonObject document(const LibraryFilterManager& filters)
{
    QJsonArray array;
    for (const LibraryFilter& filter : filters.getLibraryFilters())
        array.append(document(filter));
    return {{"current", static_cast<qint64>(filters.getCurrentFilterId())},
            {"filters", array},
            {"labels", jsonArray(filters.getFilterStrings())}};
}

void print(Session& session, const LibraryFilterManager& filters)
{
    std::string text = "Current: " + filters.getCurrentFilterString() + "\n";
    for (const LibraryFilter& filter : filters.getLibraryFilters())
        text += line(filter);
    session.console().result(document(filters), text);
}

/// The document until the filters are read.
void nothingSoFar(Session& session)
{
    session.console().resultSoFar(
        {{"current", QJsonValue()}, {"filters", QJsonArray()}, {"labels", QJsonArray()}});
}

/// The filter manager on the host's folders.
LibraryFilterManager& manager(Session& session)
{
    session.existingHost();
    return LibraryFilterManager::getLibraryFilterManager();
}

/// Begins a change. If it fails, the document still has the current filters.
OrvHost::FilterChange beginChange(Session& session, const fileString& other = {})
{
    nothingSoFar(session);
    session.existingHost();
    OrvHost::FilterChange change(other);
    session.console().resultSoFar(document(change.filters()));
    return change;
}

/// Refuses ids that a file cannot hold or that mean no filter.
long usableId(std::int64_t id)
{
    if (id == kNone || id < std::numeric_limits<std::int32_t>::min() ||
        id > std::numeric_limits<std::int32_t>::max())
        throw UsageError(std::to_string(id) +
                         " is no id of a filter: it must be a number of 32 bits other than -1");
    return static_cast<long>(id);
}

/// The id in a text; empty if it is not a number, and may thus be a name.
std::optional<long> idFrom(const std::string& text)
{
    std::int64_t id = kNone;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, id);
    if (stop != end || error == std::errc::invalid_argument)
        return std::nullopt;
    if (error != std::errc())
        throw UsageError("'" + text + "' is neither the id of a filter nor none");
    return usableId(id);
}

/// The id of the only filter with this name.
long idOfName(const LibraryFilterManager& filters, const std::string& name)
{
    const Filters& list = filters.getLibraryFilters();
    const auto isNamed = [&name](const LibraryFilter& filter) { return filter.getFilterName() == name; };
    const auto count = std::count_if(list.begin(), list.end(), isNamed);
    if (count == 0)
        throw UsageError("'" + name + "' is neither the id nor the name of a filter, nor none");
    if (count > 1)
        throw CommandFailure(std::to_string(count) + " filters have the name " + name +
                             "; give the id of one of them");
    return std::find_if(list.begin(), list.end(), isNamed)->getFilterId();
}

bool hasId(const Filters& filters, long id)
{
    return std::any_of(filters.begin(), filters.end(),
                       [id](const LibraryFilter& filter) { return filter.getFilterId() == id; });
}

void demandId(const LibraryFilterManager& filters, long id)
{
    if (!hasId(filters.getLibraryFilters(), id))
        throw CommandFailure("no filter has the id " + std::to_string(id) + ": " +
                             filters.getFilterFullname().toNativeString());
}

/// If there is a copy of a filter file that could not be read completely, tells the user.
void tellKept(const fileString& path, const fileString& copy)
{
    if (!copy.empty())
        Console::complain(path.toNativeString() + " cannot be read as a whole; it is kept as " +
                          copy.toNativeString());
}

ExitStatus saveAndPrint(Session& session, OrvHost::FilterChange& change,
                        OrvHost::FilterChange::Order order = OrvHost::FilterChange::Order::Kept)
{
    tellKept(change.filters().getFilterFullname(), change.save(order));
    print(session, change.filters());
    return ExitStatus::Done;
}

} // namespace

void FiltersCommand::declare(CommandSyntax& syntax)
{
    const auto action = [this, &syntax](const char* name, const char* summary,
                                        ExitStatus (FiltersCommand::*work)(Session&)
                                            const) -> CommandSyntax& {
        CommandSyntax& added = syntax.action(name, summary);
        added.runs([this, work](Session& session) { return (this->*work)(session); });
        return added;
    };
    action("list", "Print all filters and the current one", &FiltersCommand::list);
    action("show", "Print one filter", &FiltersCommand::show).argument("ID", mId, "Id of the filter");
    CommandSyntax& adding = action("add", "Add a filter", &FiltersCommand::add);
    adding.argument("NAME", mName, "Name of the filter");
    adding.arguments("DATABASE-ID", mDatabases, "The databases of the filter");
    adding.option("--id", mId, "N", "Id of the filter (default: the lowest free one)");
    action("remove", "Remove a filter", &FiltersCommand::remove).argument("ID", mId, "Id of the filter");
    action("use", "Make a filter the current one, or none", &FiltersCommand::use)
        .argument("ID|NAME|none", mIdOrName, "Id or name of the filter, or none");
    action("drop-database", "Remove a database from every filter", &FiltersCommand::dropDatabase)
        .argument("DATABASE-ID", mDatabase, "Id of the database");
    action("merge", "Merge the filters with another filter file; both get the result", &FiltersCommand::merge)
        .argument("FILE", mFile, "The other filter file; it is created if it is missing");
}

ExitStatus FiltersCommand::list(Session& session) const
{
    nothingSoFar(session);
    print(session, manager(session));
    return ExitStatus::Done;
}

ExitStatus FiltersCommand::show(Session& session) const
{
    const long id = usableId(mId);
    session.console().resultSoFar(
        {{"id", static_cast<qint64>(id)}, {"name", QJsonValue()}, {"databases", QJsonArray()}});
    const LibraryFilterManager& filters = manager(session);
    demandId(filters, id);
    const LibraryFilter filter =
        LibraryFilterManager::getLibraryFilterFromId(id, filters.getLibraryFilters());
    session.console().result(document(filter), line(filter));
    return ExitStatus::Done;
}

ExitStatus FiltersCommand::add(Session& session) const
{
    if (mId != kNoId)
        usableId(mId);
    OrvHost::FilterChange change = beginChange(session);
    change.add(mName, mDatabases, mId == kNoId ? std::nullopt : std::optional<long>(mId));
    return saveAndPrint(session, change);
}

ExitStatus FiltersCommand::remove(Session& session) const
{
    const long id = usableId(mId);
    OrvHost::FilterChange change = beginChange(session);
    change.remove(id);
    return saveAndPrint(session, change);
}

ExitStatus FiltersCommand::use(Session& session) const
{
    const std::optional<long> id = mIdOrName == "none" ? kNone : idFrom(mIdOrName);
    OrvHost::FilterChange change = beginChange(session);
    change.use(id ? *id : idOfName(change.filters(), mIdOrName));
    return saveAndPrint(session, change);
}

ExitStatus FiltersCommand::dropDatabase(Session& session) const
{
    OrvHost::FilterChange change = beginChange(session);
    if (change.dropDatabase(mDatabase) > 0)
        return saveAndPrint(session, change);
    Console::complain("no filter names the database " + mDatabase + "; nothing was dropped");
    print(session, change.filters());
    return ExitStatus::Done;
}

ExitStatus FiltersCommand::merge(Session& session) const
{
    const fileString file{mFile};
    OrvHost::FilterChange change = beginChange(session, file);
    for (const fileString& path : {change.filters().getFilterFullname(), file})
        tellKept(path, OrvHost::FilterChange::prepareToOverwrite(path));
    if (!change.filters().mergeFilters(file))
        throw CommandFailure("cannot write " + mFile);
    // Both files then have the same content.
    return saveAndPrint(session, change, OrvHost::FilterChange::Order::Turned);
}
