// Takes the pictures of the window that the documents show, offscreen:
// `orv_browser_screenshots ROOT REDIRECT EMPTY-ROOT OUT [light|dark [rtl]]`.
#include <cstdio>
#include <stdexcept>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "OrvHost/AppHost.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "apps/orv-browser/Appearance.h"
#include "apps/orv-browser/MainWindow.h"
#include "apps/orv-browser/Translations.h"
#include "apps/orv-browser/activities/WindowMessages.h"
#include "apps/orv-browser/models/LibraryModel.h"

namespace {

constexpr int kSettleMilliseconds = 300; // pictures come in while nobody looks

QString gFolder;
QString gSuffix;

void save(QWidget& widget, const QString& name, int settle = kSettleMilliseconds)
{
    QTest::qWait(settle);
    const QString path = gFolder + "/" + name + gSuffix + ".png";
    if (!widget.grab().toImage().convertToFormat(QImage::Format_RGB888).save(path, "PNG", 0))
        throw std::runtime_error(path.toStdString() + " cannot be written");
}

QModelIndex openNode(QTreeView& tree, int category, const QStringList& names)
{
    auto& model = dynamic_cast<LibraryModel&>(*tree.model());
    QModelIndex index = model.index(category, 0);
    for (const QString& name : names) {
        tree.expand(index);
        if (!QTest::qWaitFor([&] { return model.isRead(index); }))
            throw std::runtime_error("a folder was not read");
        index = model.match(model.index(0, 0, index), Qt::DisplayRole, name, 1, Qt::MatchExactly).value(0);
    }
    return index;
}

void saveDialog(QWidget& window, const char* action, const QString& name)
{
    QTimer::singleShot(kSettleMilliseconds, &window, [&] {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            save(*dialog, name);
            dialog->reject();
        }
    });
    window.findChild<QAction*>(action)->trigger();
}

void saveBrowsing(MainWindow& window)
{
    auto& tree = *window.findChild<QTreeView*>("libraryTree");
    tree.setCurrentIndex(openNode(tree, 2, {"Oakline Cabinets", "Base", "Oak Base 13"}));
    tree.setCurrentIndex(openNode(tree, 0, {"Café Möbel", "Stühle"}));
    tree.scrollTo(tree.currentIndex(), QAbstractItemView::PositionAtTop);
    auto& model = *tree.model();
    tree.setCurrentIndex(model.index(3, 0, tree.currentIndex()));
    save(window, "items");

    const QModelIndex base = openNode(tree, 2, {"Oakline Cabinets", "Base"});
    tree.expand(base);
    QTest::qWait(kSettleMilliseconds);
    tree.setCurrentIndex(model.index(4, 0, base));
    tree.scrollTo(base.parent().parent(), QAbstractItemView::PositionAtTop);
    save(window, "browser");

    auto& field = *window.findChild<QLineEdit*>("searchField");
    field.setText("oak 2");
    QTest::keyClick(&field, Qt::Key_Return);
    QTest::qWait(kSettleMilliseconds);
    auto& found = *window.findChild<QListView*>("searchResults");
    found.setCurrentIndex(found.model()->index(2, 0));
    save(window, "search");
    field.clear();
    QTest::qWait(kSettleMilliseconds);
}

void saveDialogs(MainWindow& window)
{
    LibraryFilterManager::getLibraryFilterManager().setLibraryFilters(
        {LibraryFilter("Bathroom", 0, {"sample-1", "sample-6"}), LibraryFilter("Garden", 1, {"sample-10"})});
    saveDialog(window, "editFilters", "filters");
    saveDialog(window, "editPreferences", "preferences");
    saveDialog(window, "showLog", "log");
    error::MessagingSystem::control().notify(__FILE__, __LINE__, error::InformationOnceTrait(),
                                             error::Message::kManufacturerMaterial, {}, {}, {});
    save(window, "message");
}

// The colours and the side to start from are those of the picture, whatever the preferences and the language
// say.
void show(MainWindow& window, const QString& service)
{
    const QStringList arguments = QApplication::arguments();
    Appearance::apply(arguments.value(5, Appearance::kLight));
    if (arguments.contains("rtl"))
        QApplication::setLayoutDirection(Qt::RightToLeft);
    window.overrideService({service, "Demo", "1", {"Garden Party", "Holiday Décor"}, {"Oakline Cabinets"}});
    window.show();
}

void saveUpdate(const OrvHost::AppHost& host, const QString& service)
{
    WindowMessages messages;
    MainWindow window(host.root(), messages);
    show(window, service);
    save(window, "empty");
    auto& summary = *window.findChild<QLabel*>("summary");
    auto& speed = *window.findChild<QLabel*>("speed");
    auto& action = *window.findChild<QAction*>("checkForUpdates");
    action.trigger();
    if (QTest::qWaitFor([&] { return !speed.text().isEmpty() || action.isEnabled(); }, 20000) &&
        !action.isEnabled()) {
        save(window, "update", 0);
    }
    if (!QTest::qWaitFor([&] { return action.isEnabled(); }, 60000))
        throw std::runtime_error("the update did not end: " + summary.text().toStdString());
    save(window, "updated");
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 5) {
        std::fputs("usage: orv_browser_screenshots ROOT REDIRECT EMPTY-ROOT OUT [light|dark [rtl]]\n",
                   stderr);
        return 2;
    }
    Translations::install(application);
    gFolder = arguments[4];
    gSuffix = arguments.size() > 5 ? "-" + arguments.mid(5).join('-') : QString();
    try {
        {
            const OrvHost::AppHost host({fileString(arguments[1].toStdString())});
            WindowMessages messages;
            MainWindow window(host.root(), messages);
            show(window, arguments[2]);
            saveBrowsing(window);
            saveDialogs(window);
        }
        Library::Chooser::cleanup();
        const OrvHost::AppHost host({fileString(arguments[3].toStdString())});
        saveUpdate(host, arguments[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orv_browser_screenshots: %s\n", error.what());
        return 1;
    }
    return 0;
}
