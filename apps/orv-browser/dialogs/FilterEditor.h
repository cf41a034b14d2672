#pragma once

#include <string>
#include <vector>

#include <QDialog>

#include "OrvLibrary/LibraryFilter.h"

class QListWidget;
class QListWidgetItem;

/// Edits the named filters: their names and their catalogs. Nothing is stored before the user accepts.
class FilterEditor : public QDialog
{
    Q_OBJECT

public:
    /// A catalog that a filter may contain.
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
    const std::vector<LibraryFilter> mFormer; ///< the filters when the editor opened
    std::vector<LibraryFilter> mFilters;
    int mShown = -1; ///< index of the filter whose catalogs are shown; -1 for none
    QListWidget* mNames;
    QListWidget* mCatalogs;
};
