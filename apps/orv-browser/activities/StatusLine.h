#pragma once

#include <QStatusBar>

class QAction;
class QLabel;
class QToolButton;

/// The line at the bottom of the window: a sentence about the last event, the speed of a download, and the
/// buttons for an update and for the log.
class StatusLine : public QStatusBar
{
    Q_OBJECT

public:
    /// @param update the action of the update button while no update runs
    /// @param activities the action of the button that shows the list of activities
    StatusLine(QAction& update, QAction& activities, QWidget* parent);

    /// @param sentence if empty, nothing is shown
    void say(const QString& sentence);
    void showSpeed(const QString& text);
    /// Changes the update button: cancel the update, or start one.
    void showRunning(bool isRunning);
    /// Shows or hides the button that cancels imports.
    void showImporting(bool isImporting);

Q_SIGNALS:
    void cancelAsked();
    void logAsked();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitSummary();
    QToolButton* addButton(const QString& objectName, const QString& text);

    QLabel* mSummary;
    QLabel* mSpeed;
    QToolButton* mUpdate;
    QToolButton* mCancel;
    bool mIsUpdating = false;
    bool mIsImporting = false;
};
