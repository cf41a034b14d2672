#pragma once

#include <QFrame>
#include <QPersistentModelIndex>
#include <QPointer>

/// A picture in front of the window: a large one that stays until a key or click, or a small one beside the
/// pointer. Lives on the interface thread.
class ItemPreview : public QFrame
{
    Q_OBJECT

public:
    explicit ItemPreview(QWidget* window);

    /// Shows the item large, in the middle of the window.
    void showLarge(const QModelIndex& index);
    /// Shows the item beside the pointer, without taking the keyboard focus.
    void showSmall(const QModelIndex& index, const QPoint& globalPosition);

Q_SIGNALS:
    /// The user pressed an arrow key in the large preview to see another item.
    /// @param key Qt::Key_Left and so on
    void stepAsked(int key);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void showItem(const QModelIndex& index);
    void goAway();

    QPersistentModelIndex mIndex;
    QPointer<QWidget> mFormerFocus;
    bool mIsLarge = false;
};
