#pragma once

#include <QFrame>
#include <QStringList>

class QLabel;
class WindowMessages;

/// Shows what the library has to tell the user, at the top of the window, until the user puts it away.
/// Nothing else waits for that.
class MessageBar : public QFrame
{
    Q_OBJECT

public:
    /// @param messages outlives the bar
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
