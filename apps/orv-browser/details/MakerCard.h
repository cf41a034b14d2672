#pragma once

#include <cstdint>

#include <QWidget>

class MakerLogos;
class QLabel;
class QPushButton;

/// Shows a maker: logo, name, contacts, and a link to all its items. Lives on the interface thread.
class MakerCard : public QWidget
{
    Q_OBJECT

public:
    /// @param logos outlive the card
    explicit MakerCard(MakerLogos& logos, QWidget* parent = nullptr);

    /// @param maker the number in a catalog; a negative one empties the card
    /// @param count the number of the maker's items; negative if unknown
    void show(std::int32_t maker, int count);

Q_SIGNALS:
    void allAsked(std::int32_t maker);

private:
    void showLogo();

    MakerLogos& mLogos;
    std::int32_t mMaker = -1;
    QLabel* mLogo;
    QLabel* mName;
    QLabel* mContact;
    QPushButton* mAll;
};
