#pragma once

#include <vector>

#include <QStackedWidget>

#include "apps/orv-browser/dialogs/FilterEditor.h"
#include "apps/orv-browser/gallery/SearchPane.h"

class CatalogIds;
class LibraryModel;
class QTreeView;
class TreePlace;

/// The tree of what is installed, as far as the current filter shows it; or, where nothing is installed, the
/// offer to fetch it.
class TreePane : public QStackedWidget
{
    Q_OBJECT

public:
    explicit TreePane(QWidget* parent = nullptr);
    ~TreePane() override;

    /// Reads the well-known folders again. Categories that were empty and are not any more open themselves.
    void refresh();
    /// Reads one catalog again after its file was replaced; the user keeps the place in it.
    void reload(const fileString& database);
    /// Shows the catalogs that the current filter lets through.
    void applyFilter();
    /// The catalogs that a filter can name. Waits until all are known; events are handled meanwhile.
    std::vector<FilterEditor::Database> databases();

Q_SIGNALS:
    /// The user went to an item, which `Library::Chooser` now holds.
    void itemChosen();
    /// Which catalogs are shown.
    void shownChanged(const std::vector<SearchPane::Source>& sources);
    /// Items were dropped on a folder of a catalog; or have not been, for a reason.
    void dropped(const fileString& database, const QString& problem);
    void fetchAsked();
    void importAsked();

private:
    void buildTree();
    QWidget* makeOffer();
    void showTreeOrOffer();
    void readIds();
    void chooseCurrent();

    LibraryModel* mModel;
    CatalogIds* mIds;
    QTreeView* mTree;
    TreePlace* mPlace;
};
