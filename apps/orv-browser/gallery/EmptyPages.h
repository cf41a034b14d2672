#pragma once

#include <QWidget>

class QLabel;

/// The page that is shown if no item was found: it names the search and the choices, and offers two ways out.
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
