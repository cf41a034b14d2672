#pragma once

#include <QLayout>
#include <QList>

/// Places widgets side by side and wraps them into lines, like words. Follows the direction of the language.
class FlowLayout : public QLayout
{
    Q_OBJECT

public:
    explicit FlowLayout(QWidget* parent = nullptr);
    ~FlowLayout() override;

    void addItem(QLayoutItem* item) override { mItems.append(item); }
    int count() const override { return mItems.size(); }
    QLayoutItem* itemAt(int index) const override { return mItems.value(index); }
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return arrange({0, 0, width, 0}, false); }
    void setGeometry(const QRect& area) override;
    QSize sizeHint() const override { return minimumSize(); }
    QSize minimumSize() const override;

private:
    int arrange(const QRect& area, bool isMoving) const;

    QList<QLayoutItem*> mItems;
};
