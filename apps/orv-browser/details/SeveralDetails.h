#pragma once

#include <QWidget>

class QLabel;

/// Several items: how many they are, and what can be done with all of them. Lives on the interface thread.
class SeveralDetails : public QWidget
{
    Q_OBJECT

public:
    explicit SeveralDetails(QWidget* parent = nullptr);

    void show(int count);

Q_SIGNALS:
    /// Make all of them favourites, or none of them.
    void favouritesAsked(bool areFavourites);

private:
    QLabel* mTitle;
};
