#pragma once

#include <functional>
#include <memory>
#include <string>

#include <QDialog>
#include <QModelIndex>
#include <QPointer>
#include <QString>

#include <gtest/gtest.h>

#include "OrvHost/AppHost.h"
#include "apps/orv-browser/LibraryActions.h"
#include "apps/orv-browser/MainWindow.h"
#include "apps/orv-browser/activities/WindowMessages.h"
#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/places/PlacesModel.h"
#include "tests/support/TempFolder.h"

class QTreeView;

namespace test {

/// The base of the tests that operate the window with keys and clicks, offscreen and on a fresh root.
class BrowserTest : public testing::Test
{
protected:
    BrowserTest();
    ~BrowserTest() override;

    /// The path of a file below the root.
    std::string inRoot(const std::string& name) const { return mFolder.path() + "/root/" + name; }
    const TempFolder& folder() const { return mFolder; }

    /// Creates, shows and starts the window.
    /// @param service the address of the catalog service; if it is empty, the preferences decide
    void open(const QString& service = {});
    /// Closes the window as the user does and destroys it.
    void close();

    MainWindow& window() { return *mWindow; }
    /// A child of the window, or of `parent`, with this object name. Fails the test if it does not exist.
    template <class Widget>
    Widget& child(const char* name, QObject* parent = nullptr)
    {
        auto* found = (parent ? parent : mWindow.get())->findChild<Widget*>(name);
        if (!found)
            throw std::runtime_error(std::string("no child ") + name);
        return *found;
    }
    QTreeView& tree();
    PlacesModel& places();
    GalleryModel& items();
    QString summary();

    /// Runs the event loop until the condition holds, at most 30 s.
    /// @return whether it holds
    static bool waitFor(const std::function<bool()>& condition);
    /// Waits until the library has been read and the gallery shows the items for the current place, words and
    /// choices.
    bool settle();
    /// The index of the place with these names from the top down. Expands each place on the way as a user
    /// does. The index is invalid if there is no such place.
    QModelIndex place(const QStringList& names);
    /// Selects this place and waits until its items are shown.
    /// @return whether the place exists
    bool goTo(const QStringList& names);
    /// The names of the direct children of a place.
    QStringList placesBelow(const QModelIndex& parent);
    /// The names of the items in the gallery, in their order.
    QStringList names();
    /// Clicks the item with this name. Fails the test if the gallery does not show it.
    void select(const QString& name);
    /// The current text of a label in the details.
    QString detail(const char* label);
    /// Runs `act`, which opens a modal dialog, and runs `answer` while the dialog is open.
    void inDialog(const std::function<void()>& act, const std::function<void(QDialog&)>& answer);
    /// Opens the dialogs of the menus one after the other, passes each to `look` when its content is there,
    /// and cancels it. A manufacturer service runs meanwhile. Call it before `open`.
    void inEachDialog(const std::function<void(QDialog&)>& look);
    /// Opens the list of a choice above the gallery and selects the entry that starts with this text. Fails
    /// the test if there is no such entry.
    void pick(const char* chip, const QString& entry);
    /// Triggers the menu action with this object name.
    void trigger(const char* action);

private:
    TempFolder mFolder;
    OrvHost::AppHost mHost;
    WindowMessages mMessages;
    std::unique_ptr<MainWindow> mWindow;
};

} // namespace test
