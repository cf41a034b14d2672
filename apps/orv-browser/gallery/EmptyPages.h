#pragma once

#include <QWidget>

class QLabel;

/// What stands in the place of the items where nothing was found: what restricts them, and two ways out.
class NothingFoundPage : public QWidget
{
    Q_OBJECT

public:
    explicit NothingFoundPage(QWidget* parent = nullptr);

    /// @param restrictions what restricts the items, for people
    /// @param elsewhere how many items another place has
    void show(const QString& place, const QStringList& restrictions, int elsewhere);

Q_SIGNALS:
    void everywhereAsked();
    void clearAsked();

private:
    QLabel* mText;
    QWidget* mEverywhere;
    QWidget* mClear;
};
