#pragma once

#include <QWidget>

class QComboBox;

/// The choice of the named filter, and the way to the editor of the filters.
class FilterBar : public QWidget
{
    Q_OBJECT

public:
    explicit FilterBar(QWidget* parent = nullptr);

    /// Shows the filters that the manager holds now.
    void fill();
    /// Lets all catalogs through again, which is saved. Tells the user when it cannot be saved.
    void chooseNone();

Q_SIGNALS:
    /// The user made another filter the current one, which is saved by then.
    void chosen();
    void editAsked();

private:
    void choose(int index);
    void use(long id);

    QComboBox* mChoice;
};
