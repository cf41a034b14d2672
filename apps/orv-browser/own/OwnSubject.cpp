#include "apps/orv-browser/own/OwnSubject.h"

#include <algorithm>

#include <QCoreApplication>

#include "apps/orv-browser/models/LibraryContent.h"
#include "apps/orv-browser/own/LibraryName.h"

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("OwnSubject", text);
}

} // namespace

QString OwnSubject::whyNotChanged(const ItemIndex& index) const
{
    const QString text = translated(QT_TRANSLATE_NOOP(
        "OwnSubject", "%1 comes from the service. Only your own libraries can be changed."));
    if (items > 0) {
        const auto foreign = std::find_if(databases.begin(), databases.end(), [&](const fileString& one) {
            const auto content = index.find(one);
            return !content || content->category() != LibraryContent::kUserCategory;
        });
        return foreign == databases.end() ? QString() : text.arg(LibraryName::nameOf(*foreign));
    }
    if (!place.isInCatalog())
        return translated(QT_TRANSLATE_NOOP("OwnSubject", "Select an item or a library of your own first."));
    return place.category == LibraryContent::kUserCategory ? QString()
                                                           : text.arg(LibraryName::nameOf(place.database));
}

QString OwnSubject::whyNotRenamed(const ItemIndex& index) const
{
    if (items > 1)
        return translated(QT_TRANSLATE_NOOP("OwnSubject", "Only one item can be renamed at a time."));
    return whyNotChanged(index);
}

QString OwnSubject::whyNotRemoved(const ItemIndex& index) const
{
    const QString problem = whyNotChanged(index);
    if (!problem.isEmpty() || items > 0 || place.kind != Place::Kind::Folder)
        return problem;
    return translated(QT_TRANSLATE_NOOP(
        "OwnSubject", "Folders cannot be deleted; select the items in it, or the library."));
}
