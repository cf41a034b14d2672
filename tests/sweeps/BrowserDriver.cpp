#include "tests/sweeps/BrowserDriver.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "apps/orv-browser/LibraryActions.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "apps/orv-browser/models/LibraryContent.h"
#include "apps/orv-browser/own/LibraryName.h"

BrowserDriver::BrowserDriver(const fileString& root) : mWindow(root, mMessages)
{
    mWindow.resize(1180, 720);
    mWindow.show();
    mWindow.library().start();
    mWindow.activateWindow();
    wait("activating", [&] { return mWindow.isActiveWindow(); });
    answerDialogs();
    settle();
}

void BrowserDriver::wait(const char* what, const std::function<bool()>& condition)
{
    if (!QTest::qWaitFor(condition, kMostMilliseconds))
        throw Unending(std::string("no end of ") + what);
}

void BrowserDriver::settle()
{
    wait("reading", [&] { return mWindow.gallery().isSettled(); });
}

/// Boxes are read and closed; other dialogs are answered once, and cancelled when they are still there.
void BrowserDriver::answerDialogs()
{
    QTimer::singleShot(1, &mWindow, [this] {
        answerDialogs(); // also for a box that comes meanwhile
        QWidget* const top = QApplication::activeModalWidget();
        if (auto* box = qobject_cast<QMessageBox*>(top)) {
            mTold << box->text();
            box->accept();
        } else if (auto* dialog = qobject_cast<QDialog*>(top); dialog && !dialog->property("met").toBool()) {
            dialog->setProperty("met", true);
            mAnswer(*dialog);
            dialog->setProperty("answered", true);
        } else if (dialog && dialog->property("answered").toBool()) {
            dialog->reject();
        }
    });
}

void BrowserDriver::inDialog(const std::function<void()>& act, const Answer& answer)
{
    mAnswer = answer;
    act();
    mAnswer = [](QDialog& dialog) { dialog.reject(); };
}

void BrowserDriver::press(QDialog& dialog, QDialogButtonBox::StandardButton button)
{
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
}

void BrowserDriver::trigger(const char* action)
{
    auto& found = child<QAction>(action);
    if (!found.isEnabled())
        throw NotDone(QLatin1String(action) + " is not offered: " + found.toolTip());
    found.trigger();
}

void BrowserDriver::pick(QMenu& menu, const QString& entry)
{
    Q_EMIT menu.aboutToShow();
    for (QAction* const action : menu.actions())
        if (action->text() == entry && action->isEnabled())
            return action->trigger();
    throw NotDone("no entry " + entry);
}

/// Waits for a text in the status line and returns it.
QString BrowserDriver::heard()
{
    const auto& summary = child<QLabel>("summary");
    wait("waiting for a sentence", [&] { return !summary.text().isEmpty(); });
    return summary.text();
}

void BrowserDriver::expect(const QString& beginning, const QString& end)
{
    const QString sentence = heard();
    if (!sentence.startsWith(beginning) || !sentence.endsWith(end))
        throw NotDone(sentence);
}

/// Selects an item of the whole library by a click.
void BrowserDriver::inGallery(const QString& item)
{
    mWindow.goTo({});
    settle();
    auto& gallery = child<QListView>("gallery");
    for (int row = 0; row < gallery.model()->rowCount(); ++row) {
        const QModelIndex index = gallery.model()->index(row, 0);
        if (index.data().toString() != item)
            continue;
        gallery.scrollTo(index);
        QTest::mouseClick(gallery.viewport(), Qt::LeftButton, {}, gallery.visualRect(index).center());
        gallery.setFocus();
        return;
    }
    throw NotDone("no item " + item);
}

/// Goes to one of the user's own libraries, in the tree.
void BrowserDriver::inLibrary(const QString& name)
{
    const fileString database = LibraryName::databaseOf(name);
    if (!database.pathExists())
        throw NotDone("no library " + name);
    mWindow.goTo({Place::Kind::Catalog, LibraryContent::kUserCategory, database, -1});
    settle();
    child<QTreeView>("places").setFocus();
}

void BrowserDriver::typeName(const std::function<void()>& act, const QString& name)
{
    inDialog(act, [&](QDialog& dialog) {
        auto* field = dialog.findChild<QLineEdit*>();
        field->selectAll();
        field->insert(name);
        if (const auto* problem = dialog.findChild<QLabel*>("nameProblem");
            problem && !problem->text().isEmpty())
            mTold << problem->text();
        press(dialog, QDialogButtonBox::Ok);
    });
    if (!mTold.isEmpty())
        throw NotDone(mTold.join(QLatin1Char('\n')));
}

void BrowserDriver::close()
{
    mWindow.close();
}
