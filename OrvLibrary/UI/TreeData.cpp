#include "OrvLibrary/UI/TreeData.h"

#include <typeinfo>

#include <QLocale>

#include "OrvLibrary/UI/TreeItemData.h"
#include "OrvLibrary/UI/TreeSortKey_p.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "OrvLibrary/host/StringUtils.h"

namespace Library {

namespace {

// Deliberate: fewer flags than an item has by default. A node cannot be edited, checked or dropped on.
// Kept by: TreeData.freshNodeHasNoImageNoTypeAndTheFlagsOfALeaf
constexpr Qt::ItemFlags kNodeFlags = Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsEnabled;

} // namespace

TreeData::TreeData()
{
    setFlags(kNodeFlags);
}

TreeData::TreeData(long long id) : mId(id)
{
    setFlags(kNodeFlags);
}

TreeData::TreeData(const TreeData& other) = default;
TreeData& TreeData::operator=(const TreeData& other) = default;
TreeData::~TreeData() = default;

int TreeData::type() const
{
    return mType;
}

void TreeData::setType(int type)
{
    mType = type;
}

std::string TreeData::getItemName() const
{
    return StringUtils::toStdString(data(Qt::DisplayRole).toString());
}

void TreeData::setItemName(const std::string& name)
{
    setData(StringUtils::toQString(name), Qt::DisplayRole);
}

bool TreeData::isItem() const
{
    return dynamic_cast<const TreeItemData*>(this) != nullptr;
}

bool TreeData::operator==(const TreeData& rhs) const
{
    return getDatabasePath() == rhs.getDatabasePath() && mId == rhs.mId;
}

int TreeData::treeOrderComparatorStatic(bool lhsIsLeaf, bool rhsIsLeaf, const std::string& lhsName,
                                        const std::string& rhsName)
{
    if (lhsIsLeaf != rhsIsLeaf)
        return lhsIsLeaf ? 1 : -1;
    return StringUtils::compareStrings(lhsName, rhsName, true);
}

bool TreeData::treeOrderComparator(const TreeData& rhs) const
{
    // Needed for correctness, too: both keys would be the same object, and the second could replace the
    // first.
    if (this == &rhs)
        return false;
    const bool leaf = isLeaf();
    if (leaf != rhs.isLeaf())
        return !leaf;
    const QLocale locale;
    return sortKey(locale) < rhs.sortKey(locale);
}

// Asks for the text every time, because a derived class may compute it. Only the key is kept.
const TreeSortKey& TreeData::sortKey(const QLocale& locale) const
{
    const QVariant value = data(Qt::DisplayRole);
    if (value.userType() == QMetaType::QString)
        return sortKeyOf(*static_cast<const QString*>(value.constData()), locale);
    return sortKeyOf(value.toString(), locale);
}

const TreeSortKey& TreeData::sortKeyOf(const QString& text, const QLocale& locale) const
{
    if (!mSortKey || !mSortKey->isFor(text, locale))
        mSortKey = std::make_shared<const TreeSortKey>(text);
    return *mSortKey;
}

bool TreeData::operator<(const QStandardItem& other) const
{
    // Siblings usually have the same class, and this check is much cheaper than the cast.
    const bool isOfThisClass = typeid(*this) == typeid(other);
    const auto* rhsTreeData =
        isOfThisClass ? static_cast<const TreeData*>(&other) : dynamic_cast<const TreeData*>(&other);
    if (!rhsTreeData) {
        notifyAssert(__FILE__, __LINE__, 0, "rhsTreeData != nullptr");
        return false;
    }
    return treeOrderComparator(*rhsTreeData);
}

} // namespace Library
