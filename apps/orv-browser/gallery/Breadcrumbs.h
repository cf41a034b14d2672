#pragma once

#include <vector>

#include <QWidget>

#include "apps/orv-browser/models/Place.h"

class QHBoxLayout;

/// The way from everything down to the place that is shown, each step a button that leads there.
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
    /// The names that are shown.
    QStringList names() const;

Q_SIGNALS:
    void chosen(const Place& place);

private:
    QHBoxLayout* mLayout;
};
