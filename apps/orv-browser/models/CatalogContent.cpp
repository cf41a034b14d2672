// How a catalog is read: folders first, put into the order of a tree, so that "below this folder" is a range
// of positions; then the items in the order of their ids, with all texts one behind the other in one long
// string. A list of 200,000 items so costs about 16 MB and hardly any allocations.
#include "apps/orv-browser/models/CatalogContent.h"

#include <algorithm>
#include <limits>
#include <map>
#include <stdexcept>

#include "OrvLibrary/UI/TreeData.h"
#include "apps/orv-browser/models/CatalogDatabase.h"
#include "apps/orv-browser/models/TextFolding.h"

namespace {

constexpr int kMostNameLetters = 500; // a longer name is cut, with an ellipsis

std::string shortened(const std::string& name)
{
    if (name.size() <= kMostNameLetters)
        return name; // no more letters than bytes
    const QString text = QString::fromStdString(name);
    return text.size() <= kMostNameLetters ? name
                                           : (text.left(kMostNameLetters) + QChar(0x2026)).toStdString();
}

std::int32_t numberOrNone(const std::optional<long>& number)
{
    const bool fits = number && *number >= 0 && *number <= std::numeric_limits<std::int32_t>::max();
    return fits ? static_cast<std::int32_t>(*number) : CatalogContent::kNone;
}

} // namespace

/// A folder as the database has it.
struct CatalogContent::RawFolder
{
    long long id = -1;
    std::string name;
    std::vector<std::size_t> children;
    bool isChild = false;
    bool isDone = false;
};

std::shared_ptr<const CatalogContent> CatalogContent::read(int category, const fileString& database)
{
    auto content = std::make_shared<CatalogContent>();
    content->mCategory = category;
    content->mDatabase = database;
    try {
        content->readFrom(CatalogDatabase(database));
    } catch (const std::exception& error) {
        content->mFolders.clear();
        content->mFolderIds.clear();
        content->mItems.clear();
        content->mTexts.clear();
        content->mProblem = QString::fromUtf8(error.what());
    }
    return content;
}

void CatalogContent::readFrom(const CatalogDatabase& database)
{
    mId = database.value(QStringLiteral("id"));
    mVersion = database.value(QStringLiteral("version"));
    const std::vector<CatalogDatabase::Folder> found = database.folders();
    std::map<long long, std::size_t> positions;
    std::vector<RawFolder> raw;
    for (const auto& folder : found) {
        positions[folder.id] = raw.size();
        RawFolder one;
        one.id = folder.id;
        one.name = shortened(folder.name);
        raw.push_back(one);
    }
    for (const auto& folder : found) {
        const auto parent = folder.parent ? positions.find(*folder.parent) : positions.end();
        if (parent == positions.end())
            continue; // it stands at the top
        raw[parent->second].children.push_back(positions[folder.id]);
        raw[positions[folder.id]].isChild = true;
    }
    orderFolders(std::move(raw));
    readItems(database);
    countItems();
    countMakers();
}

void CatalogContent::orderFolders(std::vector<RawFolder> raw)
{
    const auto byName = [&](std::size_t left, std::size_t right) {
        return Library::TreeData::treeOrderComparatorStatic(false, false, raw[left].name, raw[right].name) <
               0;
    };
    std::vector<std::size_t> top;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        std::sort(raw[i].children.begin(), raw[i].children.end(), byName);
        if (!raw[i].isChild)
            top.push_back(i);
    }
    std::sort(top.begin(), top.end(), byName);
    for (const std::size_t i : top)
        appendFolders(raw, i);
    for (int position = 0; position < static_cast<int>(mFolders.size()); ++position)
        mFolderIds.emplace_back(mFolders[static_cast<std::size_t>(position)].id, position);
    std::sort(mFolderIds.begin(), mFolderIds.end());
}

/// Without recursion, because nobody says how deep folders may lie. Folders that hold each other in a ring
/// are reached from no top and so are left out, as a tree would never show them.
void CatalogContent::appendFolders(const std::vector<RawFolder>& raw, std::size_t first)
{
    struct Step
    {
        std::size_t folder;
        int position;
        std::size_t nextChild;
    };
    std::vector<Step> way;
    const auto enter = [&](std::size_t folder) {
        const int parent = way.empty() ? -1 : way.back().position;
        way.push_back({folder, static_cast<int>(mFolders.size()), 0});
        mFolders.push_back({raw[folder].id, parent, 0, raw[folder].name});
    };
    enter(first);
    while (!way.empty()) {
        Step& here = way.back();
        if (here.nextChild < raw[here.folder].children.size()) {
            enter(raw[here.folder].children[here.nextChild++]);
            continue;
        }
        mFolders[static_cast<std::size_t>(here.position)].end = static_cast<int>(mFolders.size());
        way.pop_back();
    }
}

void CatalogContent::readItems(const CatalogDatabase& database)
{
    database.forEachItem([this](const CatalogDatabase::Item& row) {
        Item item;
        item.id = row.id;
        const std::string name = shortened(row.name);
        item.texts = keep(name);
        keep(row.paneName);
        item.folded = keep(TextFolding::folded(row.paneName.empty() ? name : name + '\n' + row.paneName));
        item.folder = folderAt(row.folder);
        item.style = numberOrNone(row.style);
        item.maker = numberOrNone(row.manufacturer);
        mItems.push_back(item);
    });
    mItems.shrink_to_fit();
    mTexts.shrink_to_fit();
}

void CatalogContent::countItems()
{
    std::vector<int> own(mFolders.size(), 0);
    for (const Item& item : mItems)
        if (item.folder >= 0)
            ++own[static_cast<std::size_t>(item.folder)];
    mItemsBefore.assign(1, 0);
    for (const int count : own)
        mItemsBefore.push_back(mItemsBefore.back() + count);
}

/// Among makers of equally many items the one with the lowest number counts.
void CatalogContent::countMakers()
{
    std::map<std::int32_t, int> counts;
    for (const Item& item : mItems)
        if (item.maker != kNone)
            ++counts[item.maker];
    int most = 0;
    for (const auto& [maker, count] : counts)
        if (count > most) {
            most = count;
            mMaker = maker;
        }
}

std::uint32_t CatalogContent::keep(const std::string& text)
{
    const std::size_t start = mTexts.size();
    if (start + text.size() >= std::numeric_limits<std::uint32_t>::max())
        throw std::runtime_error("too many names");
    mTexts += text;
    std::replace(mTexts.begin() + static_cast<std::ptrdiff_t>(start), mTexts.end(), '\0', ' ');
    mTexts += '\0';
    return static_cast<std::uint32_t>(start);
}

QString CatalogContent::name() const
{
    return QString::fromStdString(mDatabase.stem().toNativeString());
}

int CatalogContent::folderAt(long long id) const
{
    const auto found = std::lower_bound(mFolderIds.begin(), mFolderIds.end(), std::make_pair(id, -1));
    return found != mFolderIds.end() && found->first == id ? found->second : -1;
}

int CatalogContent::itemAt(long long id) const
{
    const auto found = std::lower_bound(mItems.begin(), mItems.end(), id,
                                        [](const Item& item, long long wanted) { return item.id < wanted; });
    return found != mItems.end() && found->id == id ? static_cast<int>(found - mItems.begin()) : -1;
}

int CatalogContent::itemCount(int folder) const
{
    if (folder < 0)
        return static_cast<int>(mItems.size());
    const auto end = static_cast<std::size_t>(mFolders[static_cast<std::size_t>(folder)].end);
    return mItemsBefore[end] - mItemsBefore[static_cast<std::size_t>(folder)];
}

QStringList CatalogContent::pathOf(int folder) const
{
    QStringList names;
    for (; folder >= 0; folder = mFolders[static_cast<std::size_t>(folder)].parent)
        names.prepend(QString::fromStdString(mFolders[static_cast<std::size_t>(folder)].name));
    return names;
}

QString CatalogContent::itemName(const Item& item) const
{
    return QString::fromUtf8(mTexts.c_str() + item.texts);
}

std::string CatalogContent::paneName(const Item& item) const
{
    const char* name = mTexts.c_str() + item.texts;
    return std::string(name + std::char_traits<char>::length(name) + 1);
}

std::string_view CatalogContent::foldedText(const Item& item) const
{
    return {mTexts.c_str() + item.folded};
}
