#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

/// Draws a ring around the widget with the keyboard focus, in every window of the program, because the styles
/// draw none for lists, texts and links. Lives on the interface thread.
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
    QPointer<QWidget> mRing; ///< a child of the focus widget's window, which may delete it
};
