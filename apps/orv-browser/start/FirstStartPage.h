#pragma once

#include <QScrollArea>

#include "apps/orv-browser/start/ServiceOffer.h"

class CatalogBoxes;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

/// The page that is shown instead of the items while nothing is installed: the address of a service, its
/// catalogs, and other ways to get content. It only shows, and reports the user's wishes. Lives on the
/// interface thread.
class FirstStartPage : public QScrollArea
{
    Q_OBJECT

public:
    explicit FirstStartPage(QWidget* parent = nullptr);

    /// The address as the user entered it, without blanks around it.
    QString address() const;
    /// Shows an address, unless the user has entered one.
    void suggest(const QString& address);
    /// Says what is known of the address.
    void say(const QString& sentence);
    /// Whether content can be fetched from the address.
    void setFetchable(bool isFetchable);
    /// Shows a box for each bonus and manufacturer catalog of the offer.
    /// @param settings name those that are chosen to begin with
    void showCatalogs(const ServiceOffer& offer, const OrvHost::Settings::Values& settings);
    const CatalogBoxes& bonus() const { return *mBonus; }
    const CatalogBoxes& manufacturer() const { return *mManufacturer; }
    /// Offers sample content, where there is some.
    void offerSamples(bool areThere);
    /// Says that the catalogs are on their way, while they are, in the place of the offers.
    void showFetching(bool isFetching);

Q_SIGNALS:
    /// The page came to be seen, or is seen no more.
    void shownChanged(bool isShown);
    void addressChanged();
    void fetchAsked();
    void importAsked();
    void samplesAsked();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void addTexts(QVBoxLayout& layout);
    void addAddress(QVBoxLayout& layout);
    void addButtons(QVBoxLayout& layout);

    QLabel* mText;
    QWidget* mOffers;
    QLineEdit* mAddress;
    QLabel* mState;
    CatalogBoxes* mBonus;
    CatalogBoxes* mManufacturer;
    QPushButton* mFetch;
    QPushButton* mImport;
    QPushButton* mSamples;
};
