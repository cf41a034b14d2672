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

/// Tests of the window as a user has it: offscreen, on a fresh root, driven by keys and clicks.
class BrowserTest : public testing::Test
{
protected:
    BrowserTest();
    ~BrowserTest() override;

    /// The path of a file below the root.
    std::string inRoot(const std::string& name) const { return mFolder.path() + "/root/" + name; }
    const TempFolder& folder() const { return mFolder; }

    /// Makes the window, shows it and starts it.
    /// @param service the catalog service; empty for what the preferences say
    void open(const QString& service = {});
    /// Closes the window as the user does, and destroys it.
    void close();

    MainWindow& window() { return *mWindow; }
    /// A child of the window, or of `parent`, by its object name; fails the test when there is none.
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
    /// @return whether it does
    static bool waitFor(const std::function<bool()>& condition);
    /// Waits until the library is read and the gallery shows what the place, the words and the choices say.
    bool settle();
    /// The row of the place with these names from the top down, opening each on the way as a user does;
    /// invalid when there is none.
    QModelIndex place(const QStringList& names);
    /// Makes that place the current one, and waits until its items are shown.
    /// @return whether there is such a place
    bool goTo(const QStringList& names);
    /// Names of the places right below one.
    QStringList placesBelow(const QModelIndex& parent);
    /// Names of the items that the gallery shows, in their order.
    QStringList names();
    /// Selects the item of this name by a click; fails the test when it is not shown.
    void select(const QString& name);
    /// The current text of a label in the details.
    QString detail(const char* label);
    /// Runs `act`, which opens a modal dialog, and meanwhile `answer` on the dialog.
    void inDialog(const std::function<void()>& act, const std::function<void(QDialog&)>& answer);
    /// Opens the dialogs of the menus one after the other, hands each to `look` as soon as it shows what it
    /// is for, and cancels it. A service of the manufacturers answers meanwhile; the window must not be open
    /// yet.
    void inEachDialog(const std::function<void(QDialog&)>& look);
    /// Opens the list of a choice above the gallery and takes the entry that begins with a text; fails the
    /// test when there is none.
    void pick(const char* chip, const QString& entry);
    /// Triggers an action of the menus by its object name.
    void trigger(const char* action);

private:
    TempFolder mFolder;
    OrvHost::AppHost mHost;
    WindowMessages mMessages;
    std::unique_ptr<MainWindow> mWindow;
};

} // namespace test
