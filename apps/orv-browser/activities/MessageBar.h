#pragma once

#include <QFrame>
#include <QStringList>

class QLabel;
class WindowMessages;

/// Shows the library's messages at the top of the window until the user closes them. Everything else goes on.
class MessageBar : public QFrame
{
    Q_OBJECT

public:
    /// @param messages must outlive the bar
    explicit MessageBar(WindowMessages& messages, QWidget* parent = nullptr);

private:
    void showArrived();
    void putAway();

    WindowMessages& mMessages;
    QLabel* mIcon;
    QLabel* mText;
    QStringList mShown;
    int mGravest = 0;
};
