#pragma once

#include <QTimer>
#include <QWidget>

#include "apps/orv-browser/models/ItemQuery.h"

class FacetChip;
class FilterChip;
class QHBoxLayout;
class QLineEdit;
class QToolButton;

/// What restricts the gallery: the search field, and below it the choices of style, maker, catalog,
/// favourites, what is new, and stored filter, each with the numbers that it would leave.
class SearchBar : public QWidget
{
    Q_OBJECT

public:
    explicit SearchBar(QWidget* parent = nullptr);

    /// Puts tools of the gallery into the line of the field.
    void addBesideField(QWidget* tools);
    FilterChip& filters() { return *mFilters; }
    void focusField();
    /// Whether `changed` comes as soon as the user has stopped typing.
    bool isWaiting() const { return mDelay.isActive(); }
    /// Adds what is entered and chosen here to a query.
    void addTo(ItemQuery& query) const;
    /// Shows the numbers of what was found.
    void showNumbers(const ItemQuery::Found& found);
    /// What restricts the gallery, each for people; empty for nothing.
    QStringList restrictions() const;
    /// Forgets the words and all choices, the stored filter too.
    void clear();
    /// Forgets the choices and keeps the words.
    void clearChoices();
    /// Names of what is chosen, for people; without the words.
    QStringList choices() const;
    /// Whether anything but words restricts the gallery.
    bool hasChoices() const;
    void chooseStyle(std::int32_t style);
    void chooseMaker(std::int32_t maker);

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// Words or choices have changed.
    void changed();
    /// The user wants to go on to the items, by Down or Enter.
    void itemsAsked();

private:
    void buildField();
    void buildChips();
    bool isFieldKey(int key);

    QTimer mDelay; ///< from the last key to the search
    QHBoxLayout* mFirstLine;
    QLineEdit* mField;
    FacetChip* mStyle;
    FacetChip* mMaker;
    FacetChip* mCatalog;
    QToolButton* mFavourites;
    QToolButton* mNew;
    FilterChip* mFilters;
};
