#pragma once

#include <QStandardItemModel>

class PictureStore;

/// The list of found items, with their pictures, which come in as they are seen. Lives on the interface
/// thread.
class FoundItems : public QStandardItemModel
{
    Q_OBJECT

public:
    explicit FoundItems(QObject* parent = nullptr);

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    // Found items may be dragged like those of the tree; nothing is dropped here.
    Qt::DropActions supportedDragActions() const override { return Qt::CopyAction; }
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData*, Qt::DropAction, int, int, const QModelIndex&) const override
    {
        return false;
    }

private:
    void pictureLoaded();

    PictureStore* mPictures;
};
