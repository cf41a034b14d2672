// How it works: "Rename" and "Delete" mean the selected items or the place, whichever had the focus last.
// `subject` gathers what that is, and `OwnSubject` says why it cannot be changed; that reason becomes the
// tool tip of the action, and a key that does nothing says it, too. Each action asks for a name where it
// needs one and hands the work to `OwnLibraries`.
#include "apps/orv-browser/own/OwnActions.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMenu>

#include "apps/orv-browser/WindowMenus.h"
#include "apps/orv-browser/dialogs/NameDialog.h"
#include "apps/orv-browser/gallery/GalleryModel.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "apps/orv-browser/gallery/GalleryViews.h"
#include "apps/orv-browser/models/LibraryContent.h"
#include "apps/orv-browser/own/LibraryName.h"
#include "apps/orv-browser/own/OwnLibraries.h"
#include "apps/orv-browser/places/PlaceIcons.h"
#include "apps/orv-browser/places/PlaceNames.h"
#include "apps/orv-browser/places/PlacesPane.h"

namespace {

void allow(QAction& action, const QString& problem)
{
    action.setEnabled(problem.isEmpty());
    action.setToolTip(problem); // the menu shows it
}

} // namespace

OwnActions::OwnActions(const Parts& parts, OwnLibraries& libraries)
    : QObject(&parts.window), mParts(parts), mLibraries(libraries)
{
    const WindowMenus& menus = mParts.menus;
    connect(menus.newLibrary, &QAction::triggered, this, [this] { create(false); });
    connect(menus.rename, &QAction::triggered, this, &OwnActions::rename);
    connect(menus.remove, &QAction::triggered, this, &OwnActions::remove);
    connect(menus.copyTo, &QMenu::aboutToShow, this, &OwnActions::fillCopyMenu);
    connect(&mParts.places, &PlacesPane::menuAsked, this, &OwnActions::showPlaceMenu);
    connect(&mParts.places, &PlacesPane::newLibraryAsked, this, [this] { create(false); });
    connect(&mParts.places, &PlacesPane::chosen, this, &OwnActions::update);
    connect(&mParts.content, &LibraryContent::indexChanged, this, &OwnActions::update);
    connect(&mParts.content, &LibraryContent::indexChanged, this, &OwnActions::selectRenamed);
    connect(&mLibraries, &OwnLibraries::itemRenamed, this,
            [this](const fileString& database, long long item) {
                mRenamed = {database, item, {}};
            });
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { follow(now); });
    for (QWidget* const pane :
         {static_cast<QWidget*>(&mParts.places), static_cast<QWidget*>(&mParts.gallery)})
        for (QAbstractItemView* const view : pane->findChildren<QAbstractItemView*>())
            view->installEventFilter(this);
    update();
}

/// A key that does nothing says why.
bool OwnActions::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    const auto* press = static_cast<QKeyEvent*>(event);
    for (const QAction* const action : {mParts.menus.rename, mParts.menus.remove, mParts.menus.undo})
        if (!action->isEnabled() && action->shortcut() == QKeySequence(press->key() | press->modifiers())) {
            Q_EMIT said(action->toolTip());
            return true;
        }
    return QObject::eventFilter(watched, event);
}

void OwnActions::follow(QWidget* focus)
{
    const bool isInPlaces = focus && mParts.places.isAncestorOf(focus);
    if (!isInPlaces && !(focus && mParts.gallery.views().isAncestorOf(focus)))
        return; // whoever went to a menu or to the details means what was meant before
    mIsInPlaces = isInPlaces;
    update();
}

/// The gallery knows selected items by their names, too.
void OwnActions::selectRenamed()
{
    if (mRenamed.id < 0 || mParts.content.isReading())
        return;
    mParts.gallery.showItem(mParts.gallery.place(), mRenamed.database, mRenamed.id);
    mRenamed = {};
}

OwnSubject OwnActions::subject() const
{
    OwnSubject subject{mParts.gallery.place(), 0, {}};
    if (mIsInPlaces)
        return subject;
    const ItemQuery::Found& found = mParts.gallery.views().model().found();
    std::set<std::uint32_t> catalogs;
    for (const int row : mParts.gallery.views().selectedRows()) {
        ++subject.items;
        catalogs.insert(found.items[static_cast<std::size_t>(row)].catalog);
    }
    for (const std::uint32_t catalog : catalogs)
        subject.databases.insert(found.index->catalogs()[catalog]->database());
    return subject;
}

std::vector<ItemDrag::Item> OwnActions::selectedItems() const
{
    std::vector<ItemDrag::Item> items;
    for (const int row : mParts.gallery.views().selectedRows())
        items.push_back(mParts.gallery.views().model().itemAt(row));
    return items;
}

void OwnActions::update()
{
    const OwnSubject now = subject();
    const ItemIndex& index = *mParts.content.index();
    allow(*mParts.menus.rename, now.whyNotRenamed(index));
    allow(*mParts.menus.remove, now.whyNotRemoved(index));
    const bool hasItems = !mParts.gallery.views().selectedRows().empty();
    allow(*mParts.menus.copyTo->menuAction(), hasItems ? QString() : tr("Select items first."));
}

void OwnActions::fillCopyMenu()
{
    QMenu& menu = *mParts.menus.copyTo;
    menu.clear();
    for (const LibraryContent::Catalog& catalog : mParts.content.catalogs()) {
        if (catalog.category != LibraryContent::kUserCategory)
            continue;
        const Place place{Place::Kind::Catalog, catalog.category, catalog.database, -1};
        const QString name = LibraryName::nameOf(catalog.database);
        menu.addAction(PlaceIcons::of(place), QString(name).replace('&', QLatin1String("&&")), this,
                       [this, place] { mLibraries.copy(selectedItems(), place); });
    }
    menu.addSeparator();
    menu.addAction(tr("&New library…"), this, [this] { create(true); });
}

void OwnActions::showPlaceMenu(const QPoint& globalPosition)
{
    auto* menu = new QMenu(&mParts.window);
    menu->setObjectName(QStringLiteral("placeMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setToolTipsVisible(true);
    menu->addActions({mParts.menus.newLibrary, mParts.menus.rename, mParts.menus.remove});
    menu->popup(globalPosition);
}

QString OwnActions::ask(const QString& title, const QString& question, const QString& name,
                        const std::function<QString(const QString&)>& problemOf) const
{
    NameDialog dialog(title, question, name, problemOf, &mParts.window);
    return dialog.exec() == QDialog::Accepted && dialog.name() != name ? dialog.name() : QString();
}

void OwnActions::create(bool withItems)
{
    const std::vector<ItemDrag::Item> items = withItems ? selectedItems() : std::vector<ItemDrag::Item>();
    const QString name = ask(tr("New library"), tr("Name of the new library:"), QString(),
                             [taken = LibraryName::installed()](const QString& typed) {
                                 return LibraryName::problemOf(typed, taken);
                             });
    if (!name.isEmpty())
        mLibraries.create(name, items);
}

void OwnActions::rename()
{
    const OwnSubject now = subject();
    if (now.items == 1)
        renameItem(selectedItems().front());
    else if (now.place.kind == Place::Kind::Folder)
        renameFolder(now.place);
    else
        renameLibrary(now.place);
}

void OwnActions::renameLibrary(const Place& place)
{
    const QString former = LibraryName::nameOf(place.database);
    QStringList taken = LibraryName::installed();
    taken.removeAll(former);
    const QString name = ask(tr("Rename"), tr("New name of %1:").arg(former), former,
                             [taken](const QString& typed) { return LibraryName::problemOf(typed, taken); });
    if (!name.isEmpty())
        mLibraries.rename(place.database, name);
}

void OwnActions::renameFolder(const Place& place)
{
    const QString former = PlaceNames::name(place, *mParts.content.index());
    const QString name =
        ask(tr("Rename"), tr("New name of %1:").arg(former), former, LibraryName::problemOfEntry);
    if (!name.isEmpty())
        mLibraries.renameFolder(place, former, name);
}

void OwnActions::renameItem(const ItemDrag::Item& item)
{
    const QString name =
        ask(tr("Rename"), tr("New name of %1:").arg(item.name), item.name, LibraryName::problemOfEntry);
    if (!name.isEmpty())
        mLibraries.renameItem(item, name);
}

void OwnActions::remove()
{
    const OwnSubject now = subject();
    if (now.items > 0)
        mLibraries.removeItems(selectedItems());
    else
        mLibraries.remove(now.place.database);
}
