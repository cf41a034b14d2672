#pragma once

#include <vector>

#include <QWidget>

#include "apps/orv-browser/models/Place.h"

class QHBoxLayout;

/// The path from "everything" to the current place. Each step is a button that opens it.
class Breadcrumbs : public QWidget
{
    Q_OBJECT

public:
    struct Step
    {
        Place place;
        QString name;
    };

    explicit Breadcrumbs(QWidget* parent = nullptr);

    /// @param steps from the top down
    void show(const std::vector<Step>& steps);
    /// The names of the steps.
    QStringList names() const;

Q_SIGNALS:
    void chosen(const Place& place);

private:
    QHBoxLayout* mLayout;
    std::vector<Step> mSteps; ///< shown now
};
