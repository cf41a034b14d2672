#pragma once

#include <QRect>

#include "OrvLibrary/host/fileString.h"

class GalleryPane;
class PlacesPane;
class QSplitter;
class QWidget;

/// Brings the window back as the user left it. Lives as long as the window, on the interface thread.
class WindowMemory
{
public:
    /// @param root where the state is kept; see `WindowState`
    WindowMemory(fileString root, QWidget& window, QSplitter& panes, PlacesPane& places,
                 GalleryPane& gallery);

    /// To be called once the catalogs are known, whether they are read or not.
    void restore();
    /// Gives the window its former place, on the screen; part of `restore`.
    void place();
    void save() const;

private:
    fileString mRoot;
    QWidget& mWindow;
    QSplitter& mPanes;
    PlacesPane& mPlaces;
    GalleryPane& mGallery;
    QRect mGeometry; ///< that was kept; null for none
};
