#pragma once

#include <vector>

#include <QGroupBox>
#include <QList>

#include "apps/orv-browser/start/ServiceOffer.h"

class QCheckBox;

/// A box for each catalog of a kind that the service lists, for the user to choose from; hidden while there
/// is none. Lives on the interface thread.
class CatalogBoxes : public QGroupBox
{
    Q_OBJECT

public:
    /// @param title of the kind, for people
    explicit CatalogBoxes(const QString& title, QWidget* parent = nullptr);

    /// Shows these catalogs. Boxes that were ticked stay ticked.
    /// @param chosen names that are chosen to begin with
    void show(const std::vector<ServiceOffer::Catalog>& catalogs, const std::vector<std::string>& chosen);
    /// The names to fetch: those of `before` that have no box, and those whose box is ticked.
    std::vector<std::string> chosen(const std::vector<std::string>& before) const;
    /// From the top down.
    QList<QWidget*> boxes() const;

private:
    struct Box
    {
        std::string name;
        QCheckBox* box;
    };
    std::vector<Box> mBoxes;
};
