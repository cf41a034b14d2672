#pragma once

#include <cstdint>

#include <QWidget>

class QLabel;
class QPushButton;

/// A maker: logo, name, how to reach it, and the way to all its items. Lives on the interface thread.
class MakerCard : public QWidget
{
    Q_OBJECT

public:
    explicit MakerCard(QWidget* parent = nullptr);

    /// @param maker a number that a catalog gives; a negative one empties the card
    /// @param count how many items of the maker there are; negative when that is not known
    void show(std::int32_t maker, int count);

Q_SIGNALS:
    void allAsked(std::int32_t maker);

private:
    std::int32_t mMaker = -1;
    QLabel* mLogo;
    QLabel* mName;
    QLabel* mContact;
    QPushButton* mAll;
};
