#pragma once

#include <functional>
#include <stdexcept>
#include <string>

#include <QDialog>
#include <QDialogButtonBox>
#include <QMenu>
#include <QStringList>

#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/MainWindow.h"
#include "apps/orv-browser/activities/WindowMessages.h"

/// The window did not do a step, and the user knows why.
struct NotDone : std::runtime_error
{
    explicit NotDone(const QString& why) : std::runtime_error(why.toStdString()) {}
};

/// The window neither did a step nor said anything.
struct Unending : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// Operates the real window as a user does, by its menus, buttons and dialogs, and reads its messages.
class BrowserDriver
{
public:
    static constexpr int kMostMilliseconds = 60000;

    /// Opens the window and waits until it has read the library.
    explicit BrowserDriver(const fileString& root);
    /// @param step its name and texts
    /// @throws NotDone or Unending
    void take(const QStringList& step);
    /// Closes the window, which then saves its state.
    void close();

private:
    using Answer = std::function<void(QDialog&)>;

    template <class Widget>
    Widget& child(const char* name)
    {
        auto* found = mWindow.findChild<Widget*>(name);
        if (!found)
            throw Unending(std::string("no child ") + name);
        return *found;
    }
    static void wait(const char* what, const std::function<bool()>& condition);
    void settle();
    void answerDialogs();
    void inDialog(const std::function<void()>& act, const Answer& answer);
    void trigger(const char* action);
    void pick(QMenu& menu, const QString& entry);
    QString heard();
    void expect(const QString& beginning, const QString& end = {});
    void inGallery(const QString& item);
    void inLibrary(const QString& name);
    static void press(QDialog& dialog, QDialogButtonBox::StandardButton button);
    void typeName(const std::function<void()>& act, const QString& name);
    void editFilters(const Answer& answer);

    void saveFilter(const QStringList& texts);
    void importArchives(const QStringList& texts);
    void update();
    void refresh();
    void prefer(const QStringList& texts);
    void undo();

    WindowMessages mMessages;
    MainWindow mWindow;
    Answer mAnswer = [](QDialog& dialog) { dialog.reject(); };
    QStringList mTold; ///< by boxes that the user closed
};
