#include "OrvLibrary/UI/TreeData.h"

#include "OrvLibrary/UI/TreeItemData.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "OrvLibrary/host/StringUtils.h"

namespace Library {

namespace {

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
    return treeOrderComparatorStatic(isLeaf(), rhs.isLeaf(), getItemName(), rhs.getItemName()) < 0;
}

bool TreeData::operator<(const QStandardItem& other) const
{
    const auto* rhsTreeData = dynamic_cast<const TreeData*>(&other);
    if (!rhsTreeData) {
        notifyAssert(__FILE__, __LINE__, 0, "rhsTreeData != nullptr");
        return false;
    }
    return treeOrderComparator(*rhsTreeData);
}

} // namespace Library
