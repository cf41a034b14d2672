#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <QStandardItemModel>
#include <QThreadPool>

#include "OrvLibrary/LibraryCategory.h"
#include "OrvLibrary/UI/TreeData.h"

class CatalogRows;
class PictureStore;

/// The tree of what is installed: library categories, catalogs in them, and folders and items that are read
/// from a catalog when it, or a folder in it, is opened. Reading and sorting happen off the interface thread;
/// rows come in portions, so that a folder of any size leaves the window at work. Lives on the interface
/// thread.
class LibraryModel : public QStandardItemModel
{
    Q_OBJECT

public:
    /// User libraries have no category number of their own in the library.
    static constexpr auto kUserLibrary = static_cast<Library::LibraryCategory>(8);

    /// The row of the user's libraries among the categories.
    static constexpr int kUserRow = 3;

    explicit LibraryModel(QObject* parent = nullptr);
    ~LibraryModel() override;

    /// Reads the well-known folders again. Catalogs that stayed keep their nodes; new ones come in, gone ones
    /// leave.
    void refresh();
    /// Reads one catalog again after its file was replaced.
    void reload(const fileString& database);
    /// How many catalogs there are.
    int catalogCount() const;
    /// Calls for every catalog node, with the category node that holds it.
    void
    forEachCatalog(const std::function<void(const QModelIndex& category, Library::TreeData& catalog)>& call);

    /// The library node of an index; null for the note rows of a folder that is being read or cannot be.
    Library::TreeData* node(const QModelIndex& index) const;

    /// Lets a node whose reading failed be read again when it is opened next.
    void retry(const QModelIndex& parent);
    /// Whether all rows of a node are there, or why they cannot be; always so for leaves and notes.
    bool isRead(const QModelIndex& parent) const;

    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    // Items may be dragged out of the window, and into the folders of the user's own libraries, which makes a
    // copy there.
    Qt::DropActions supportedDropActions() const override { return Qt::CopyAction; }
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

Q_SIGNALS:
    /// All rows of a folder or catalog are there.
    void filled(const QModelIndex& parent);
    /// Items were dropped on a folder of a catalog, which so has changed; or have not been, for a reason.
    void dropped(const fileString& database, const QString& problem);

private:
    void refreshCategory(QStandardItem& category, const fileString& folder);
    void fill(QStandardItem* parent, const std::shared_ptr<CatalogRows>& rows);
    void showNote(QStandardItem* parent, const QString& text);
    void pictureLoaded(const fileString& database, long long item);

    QThreadPool mPool;
    PictureStore* mPictures;
    int mReadings = 0;
};
