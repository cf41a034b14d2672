#pragma once

#include <memory>
#include <string>

#include <QStandardItem>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

class QLocale;

namespace Library {

class TreeSortKey;

/// A node of the library browser's item tree: what library categories, folders and items have in common.
///
/// The node's name is its display text, so that views show it without further ado. A new node can be
/// selected, dragged and enabled, and nothing else; in particular it cannot be edited or dropped on.
/// A node belongs to the thread of the model that holds it, which is the interface thread.
class ORVLIBRARY_EXPORT TreeData : public QStandardItem
{
public:
    TreeData();
    /// @param id the database id of the object that the node stands for; -1 for none
    explicit TreeData(long long id);
    TreeData(const TreeData& other);
    TreeData& operator=(const TreeData& other);
    ~TreeData() override;

    /// The type as last set; -1 for none.
    int type() const override;
    /// The tree order, see `treeOrderComparator`; model sorting asks it. A foreign item on the right is
    /// reported to the assertion handler, and then the answer is false.
    bool operator<(const QStandardItem& other) const override;

    virtual void setType(int type);
    /// The library database that holds the object. The reference lives as long as the node.
    virtual const fileString& getDatabasePath() const = 0;
    /// Whether the node still refers to something that exists.
    virtual bool isValid() const = 0;
    /// Whether the node is an object rather than a container.
    virtual bool isLeaf() const = 0;

    /// The database id; -1 for none.
    long long getId() const { return mId; }
    /// The display text as UTF-8; empty when it cannot be read as text.
    std::string getItemName() const;
    /// @param name UTF-8
    void setItemName(const std::string& name);
    /// Index of the node's image in the host's own list; -1 for none. It is not a role of the item.
    long getItemImageIndex() const { return mImageIndex; }
    void setItemImageIndex(long index) { mImageIndex = index; }

    /// Whether the node is a `TreeItemData`.
    bool isItem() const;
    /// Whether both nodes stand for the same object: equal database paths and ids.
    bool operator==(const TreeData& rhs) const;

    /// Containers come before leaves, and nodes of one kind follow the browser's name order, without regard
    /// to letter case.
    /// @param lhsName, rhsName UTF-8
    /// @return negative when the left node comes first, 0 when neither does, positive otherwise
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
    // Not part of what the node is: kept from the first comparison until the text or the language differs.
    mutable std::shared_ptr<const TreeSortKey> mSortKey;
};

} // namespace Library
