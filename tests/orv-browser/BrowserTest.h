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
#include "apps/orv-browser/MainWindow.h"
#include "apps/orv-browser/activities/WindowMessages.h"
#include "apps/orv-browser/models/LibraryModel.h"
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
    LibraryModel& model();
    QString summary();

    /// Runs the event loop until the condition holds, at most 30 s.
    /// @return whether it does
    static bool waitFor(const std::function<bool()>& condition);
    /// The index of the node with these names from the top down, opening each on the way as a user does, and
    /// waiting until it was read; invalid when there is none.
    QModelIndex openPath(const QStringList& names);
    QModelIndex childNamed(const QModelIndex& parent, const QString& name);
    QStringList childNames(const QModelIndex& parent);
    /// Runs `act`, which opens a modal dialog, and meanwhile `answer` on the dialog.
    void inDialog(const std::function<void()>& act, const std::function<void(QDialog&)>& answer);
    /// Triggers an action of the menus by its object name.
    void trigger(const char* action);

private:
    TempFolder mFolder;
    OrvHost::AppHost mHost;
    WindowMessages mMessages;
    std::unique_ptr<MainWindow> mWindow;
};

} // namespace test
