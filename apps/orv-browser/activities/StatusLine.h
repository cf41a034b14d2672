#pragma once

#include <QStatusBar>

class QAction;
class QLabel;
class QToolButton;

/// The foot of the window: a sentence on what came last, the speed of what goes on, and the buttons for an
/// update and for the log.
class StatusLine : public QStatusBar
{
    Q_OBJECT

public:
    /// @param update what the button for an update does while none runs
    /// @param activities what the button that unfolds the list of activities does
    StatusLine(QAction& update, QAction& activities, QWidget* parent);

    /// @param sentence empty for silence
    void say(const QString& sentence);
    void showSpeed(const QString& text);
    /// Offers to cancel an update, or to start one.
    void showRunning(bool isRunning);
    /// Offers to cancel imports.
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
