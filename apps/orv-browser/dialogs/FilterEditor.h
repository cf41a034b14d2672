#pragma once

#include <string>
#include <vector>

#include <QDialog>

#include "OrvLibrary/LibraryFilter.h"

class QListWidget;
class QListWidgetItem;

/// Edits the named filters: their names and the catalogs that are in them. Nothing is kept before the user
/// accepts.
class FilterEditor : public QDialog
{
    Q_OBJECT

public:
    /// A catalog that can be in a filter.
    struct Database
    {
        std::string id;
        std::string name;
    };

    FilterEditor(std::vector<Database> databases, QWidget* parent);

    void accept() override;

private:
    void addFilter();
    void removeFilter();
    void rename(const QListWidgetItem* item);
    void showFilter(int row);
    void takeChecks();
    QString freeName() const;
    bool save();
    long freeId() const;

    std::vector<Database> mDatabases;
    const std::vector<LibraryFilter> mFormer; ///< as the editor found them
    std::vector<LibraryFilter> mFilters;
    int mShown = -1; ///< the filter whose catalogs are shown; -1 for none
    QListWidget* mNames;
    QListWidget* mCatalogs;
};
