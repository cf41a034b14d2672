#pragma once

#include <QRect>

#include "OrvLibrary/host/fileString.h"

class GalleryPane;
class PlacesPane;
class QSplitter;
class QWidget;

/// Restores the window as the user left it. Lives as long as the window, on the interface thread.
class WindowMemory
{
public:
    /// @param root the folder of the state file, see `WindowState`
    WindowMemory(fileString root, QWidget& window, QSplitter& panes, PlacesPane& places,
                 GalleryPane& gallery);

    /// Call it when the catalogs are known, even if they have not been read.
    void restore();
    /// Moves the window to its former place on the screen; a part of `restore`.
    void place();
    void save() const;

private:
    fileString mRoot;
    QWidget& mWindow;
    QSplitter& mPanes;
    PlacesPane& mPlaces;
    GalleryPane& mGallery;
    QRect mGeometry; ///< the stored one; null if there is none
};
