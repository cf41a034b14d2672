#pragma once

#include <QTimer>
#include <QWidget>

#include "apps/orv-browser/models/ItemQuery.h"

class FacetChip;
class FilterChip;
class QHBoxLayout;
class QLineEdit;
class QToolButton;

/// Everything that restricts the gallery: the search field and, below it, the choices of style, maker,
/// catalog, favourites, news and filter, each with the number of items that it would leave.
class SearchBar : public QWidget
{
    Q_OBJECT

public:
    explicit SearchBar(QWidget* parent = nullptr);

    /// Adds tools of the gallery beside the field.
    void addBesideField(QWidget* tools);
    FilterChip& filters() { return *mFilters; }
    void focusField();
    /// Whether the user is typing, and `changed` will be sent soon.
    bool isWaiting() const { return mDelay.isActive(); }
    /// Adds the words and choices to a query.
    void addTo(ItemQuery& query) const;
    /// Shows the numbers of a result.
    void showNumbers(const ItemQuery::Found& found);
    /// The restrictions, each for people; empty if there are none.
    QStringList restrictions() const;
    /// Removes the words and all choices, including the filter.
    void clear();
    /// Removes the choices and keeps the words.
    void clearChoices();
    /// The names of the choices, for people; without the words.
    QStringList choices() const;
    /// Whether anything except words restricts the gallery.
    bool hasChoices() const;
    void chooseStyle(std::int32_t style);
    void chooseMaker(std::int32_t maker);

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// The words or choices have changed.
    void changed();
    /// The user wants to move on to the items, with Down or Enter.
    void itemsAsked();

private:
    void buildField();
    void buildChips();
    bool isFieldKey(int key);

    QTimer mDelay; ///< between the last key and the search
    QHBoxLayout* mFirstLine;
    QLineEdit* mField;
    FacetChip* mStyle;
    FacetChip* mMaker;
    FacetChip* mCatalog;
    QToolButton* mFavourites;
    QToolButton* mNew;
    FilterChip* mFilters;
};
