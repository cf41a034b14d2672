// Any text as a filter file. Loading must give what the rules give for the tree of another JSON reader.
// Saving and loading reverses the list, so doing it twice restores it. A merge must follow the rules for ids
// and names.
#include <algorithm>
#include <climits>
#include <cstdlib>

#include "OrvLibrary/LibraryFilterManager.h"
#include "fuzz/FuzzSandbox.h"
#include "fuzz/JsonMembers.h"

using fuzz::lastMember;
using fuzz::require;
using fuzz::WrongType;
using Json = test::JsonOracle;

namespace {

/// A filter as a value that can be compared.
struct Filter
{
    std::string name;
    long id = -1;
    std::vector<std::string> databases;

    bool operator==(const Filter& other) const
    {
        return name == other.name && id == other.id && databases == other.databases;
    }
};

using Filters = std::vector<Filter>;

struct Content
{
    long currentId = -1;
    Filters filters;
};

Filters valuesOf(const std::vector<LibraryFilter>& filters)
{
    Filters values;
    for (const LibraryFilter& filter : filters)
        values.push_back({filter.getFilterName(), filter.getFilterId(), filter.getDatabaseIds()});
    return values;
}

std::vector<LibraryFilter> filtersOf(const Filters& values)
{
    std::vector<LibraryFilter> filters;
    for (const Filter& value : values)
        filters.emplace_back(value.name, value.id, value.databases);
    return filters;
}

Content load(const fileString& file)
{
    std::vector<LibraryFilter> filters;
    Content content;
    content.currentId = LibraryFilterManager::loadFiltersFromFile(file, filters);
    content.filters = valuesOf(filters);
    return content;
}

void save(const fileString& file, const Content& content)
{
    require(LibraryFilterManager::saveFiltersToFile(file, filtersOf(content.filters), content.currentId),
            "filters are saved");
}

Filter filterOf(const Json::Value& value)
{
    if (value.kind != Json::Kind::Object)
        throw WrongType();
    Filter filter;
    if (const auto* name = lastMember(value, "Filter_Name", Json::Kind::Text))
        filter.name = name->text;
    if (const auto* id = lastMember(value, "Filter_Id", Json::Kind::Integer))
        filter.id = id->integer;
    const auto* databases = lastMember(value, "Database_Ids", Json::Kind::Array);
    for (const Json::Value& database : databases ? databases->elements : throw WrongType()) {
        if (database.kind != Json::Kind::Text)
            throw WrongType();
        filter.databases.push_back(database.text);
    }
    return filter;
}

/// Applies the rules of loading to the other reader's tree.
Content expectedContent(const std::string& text)
{
    const Json::Verdict verdict = Json::judge(text);
    Content content;
    if (!verdict.tree)
        return content;
    try {
        if (const auto* id = lastMember(*verdict.tree, "Current_Filter", Json::Kind::Integer))
            content.currentId = id->integer;
        for (auto member = verdict.tree->members.rbegin(); member != verdict.tree->members.rend(); ++member) {
            if (member->first != "Filter")
                continue;
            const Filter filter = filterOf(member->second);
            if (filter.id != -1 && !filter.name.empty())
                content.filters.push_back(filter);
        }
    } catch (const WrongType&) {
        // The members read before the error count.
    }
    return content;
}

void requireSame(const Content& found, const Content& expected, const char* promise)
{
    require(found.currentId == expected.currentId && found.filters == expected.filters, promise);
}

/// The result of loading these saved filters.
Content loadedFrom(const Content& saved)
{
    const auto fits = [](long number) { return number >= INT_MIN && number <= INT_MAX; };
    Content content;
    for (const Filter& filter : saved.filters) {
        // The reader of the file refuses larger numbers.
        if (!fits(filter.id))
            return {};
        if (filter.id != -1 && !filter.name.empty())
            content.filters.insert(content.filters.begin(), filter);
    }
    content.currentId = fits(saved.currentId) ? saved.currentId : -1;
    return fits(saved.currentId) ? content : Content();
}

void checkRoundTrip(const fileString& file, const Content& content)
{
    save(file, content);
    const Content once = load(file);
    requireSame(once, loadedFrom(content), "a saved file loads as the list turned round");
    save(file, once);
    requireSame(load(file), loadedFrom(once), "saving twice turns the list back");
}

/// Filters that may contain any bytes, one per line: "name TAB id TAB database TAB ...".
Content filtersOfLines(const std::string& text)
{
    Content content;
    for (const std::string& line : fuzz::linesOf(text)) {
        std::vector<std::string> fields(1);
        for (const char c : line) {
            if (c == '\t')
                fields.emplace_back();
            else
                fields.back() += c;
        }
        Filter filter;
        filter.name = fields[0];
        filter.id = fields.size() > 1 ? std::strtol(fields[1].c_str(), nullptr, 10) : 0;
        filter.databases.assign(fields.begin() + std::min<std::ptrdiff_t>(2, static_cast<int>(fields.size())),
                                fields.end());
        content.currentId = filter.id;
        content.filters.push_back(filter);
    }
    return content;
}

template <class Predicate>
bool hasAny(const Filters& filters, Predicate predicate)
{
    return std::any_of(filters.begin(), filters.end(), predicate);
}

/// A simple implementation of the merge that searches the whole list at each step.
Filters merged(Filters list, const Filters& added)
{
    for (const Filter& filter : added) {
        if (hasAny(list,
                   [&](const Filter& f) { return f.name == filter.name && f.databases == filter.databases; }))
            continue;
        Filter fresh = filter;
        for (fresh.id = 0; hasAny(list, [&](const Filter& f) { return f.id == fresh.id; });)
            ++fresh.id;
        for (int n = 1; hasAny(list, [&](const Filter& f) { return f.name == fresh.name; }); ++n)
            fresh.name = filter.name + " " + std::to_string(n);
        list.push_back(fresh);
    }
    return list;
}

void checkMerge(const fileString& file, const std::string& text, const Filters& own)
{
    fuzz::Sandbox::get().write("filters.json", text);
    const Content before = load(file);
    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    manager.setLibraryFilters(filtersOf(own));
    require(manager.mergeFilters(file), "filters are merged");
    const Content after{before.currentId, merged(before.filters, own)};
    requireSame({manager.getCurrentFilterId(), valuesOf(manager.getLibraryFilters())}, after,
                "the manager has the file's filters and its own under new ids");
    requireSame(load(file), loadedFrom(after), "the merged list is saved");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const fuzz::Sandbox& sandbox = fuzz::Sandbox::get();
    const std::string text = fuzz::textOf(data, size);
    const fileString file = sandbox.write("filters.json", text);
    const Content content = load(file);
    requireSame(content, expectedContent(text), "the file is read by the rules");
    checkRoundTrip(file, content);
    const Content made = filtersOfLines(text);
    checkRoundTrip(file, made);
    checkMerge(file, text, made.filters);
    return 0;
}
