#pragma once

#include <memory>
#include <string>

#include <QStandardItem>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

class QLocale;

namespace Library {

class TreeSortKey;

/// A node in the item tree of the library browser: the base of categories, folders and items.
///
/// The node's name is its display text, so views can show it directly. A new node can be selected and
/// dragged. It cannot be edited, and nothing can be dropped on it. A node belongs to the thread of its model,
/// which is the interface thread.
class ORVLIBRARY_EXPORT TreeData : public QStandardItem
{
public:
    TreeData();
    /// @param id the database id of the object; -1 for none
    explicit TreeData(long long id);
    TreeData(const TreeData& other);
    TreeData& operator=(const TreeData& other);
    ~TreeData() override;

    /// The last type that was set; -1 for none.
    int type() const override;
    /// The order of the tree, see `treeOrderComparator`; models use it for sorting. If the right side is not
    /// a node, tells the assertion handler and returns false.
    bool operator<(const QStandardItem& other) const override;

    virtual void setType(int type);
    /// The database that holds the object. The reference is valid as long as the node.
    virtual const fileString& getDatabasePath() const = 0;
    /// Whether the object still exists.
    virtual bool isValid() const = 0;
    /// Whether the node is an object and not a container.
    virtual bool isLeaf() const = 0;

    /// The database id; -1 for none.
    long long getId() const { return mId; }
    /// The display text as UTF-8; empty if the display role holds no text.
    std::string getItemName() const;
    /// @param name UTF-8
    void setItemName(const std::string& name);
    /// Index of the node's image in the host's list; -1 for none. Not stored as a role of the item.
    long getItemImageIndex() const { return mImageIndex; }
    void setItemImageIndex(long index) { mImageIndex = index; }

    /// Whether the node is a `TreeItemData`.
    bool isItem() const;
    /// Whether both nodes are the same object: equal database paths and ids.
    bool operator==(const TreeData& rhs) const;

    /// Containers come before objects. Nodes of the same kind are ordered by name, in the order of the
    /// browser and without regard to letter case.
    /// @param lhsName, rhsName UTF-8
    /// @return negative if the left node comes first, positive if the right one does, 0 if neither
    static int treeOrderComparatorStatic(bool lhsIsLeaf, bool rhsIsLeaf, const std::string& lhsName,
                                         const std::string& rhsName);
    /// Whether this node comes before `rhs` in that order.
    bool treeOrderComparator(const TreeData& rhs) const;

private:
    const TreeSortKey& sortKey(const QLocale& locale) const;
    const TreeSortKey& sortKeyOf(const QString& text, const QLocale& locale) const;

    long mImageIndex = -1;
    long long mId = -1;
    int mType = -1;
    // A cache, not a part of the value: kept until the text or the language changes.
    mutable std::shared_ptr<const TreeSortKey> mSortKey;
};

} // namespace Library
