#pragma once

#include <QWidget>

class QLabel;
class QMenu;
class QPushButton;

/// Several items: how many they are, and what can be done with all of them. Lives on the interface thread.
class SeveralDetails : public QWidget
{
    Q_OBJECT

public:
    explicit SeveralDetails(QWidget* parent = nullptr);

    void show(int count);
    /// @param menu the libraries that the items can be copied to; outlives the widget
    void setCopyMenu(QMenu* menu);

Q_SIGNALS:
    /// Make all of them favourites, or none of them.
    void favouritesAsked(bool areFavourites);

private:
    QLabel* mTitle;
    QPushButton* mCopy;
};
