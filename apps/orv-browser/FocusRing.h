#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

/// Draws a ring around whatever the keyboard has reached, in every window of the program: the styles leave
/// lists, texts and links without one. Lives on the interface thread.
class FocusRing : public QObject
{
    Q_OBJECT

public:
    explicit FocusRing(QObject* parent);
    ~FocusRing() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(QWidget* focus);
    void place();

    QPointer<QWidget> mFocus;
    QPointer<QWidget> mRing; ///< a child of the window of the focus, which may take it along
};
