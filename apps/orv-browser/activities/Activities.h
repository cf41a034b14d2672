#pragma once

#include <set>
#include <string>

#include <QObject>
#include <QStringList>
#include <QTimer>

#include "apps/orv-browser/activities/ActivityModel.h"

class ActivityPane;
class LibraryActions;
class QAction;
class ResultCard;
class UpdateSummary;
class UserLists;
namespace OrvHost {
struct ServiceReport;
struct UpdateOutcome;
} // namespace OrvHost

/// Shows what updates and imports do and how they ended: the list of what is fetched and imported, and the
/// card with the result. Lives on the interface thread, as long as the window, which owns both widgets.
class Activities : public QObject
{
    Q_OBJECT

public:
    /// @param lists tell whether the window knows what is new; outlive the object
    /// @param shown unfolds the list and folds it; checkable
    Activities(LibraryActions& library, const UserLists& lists, QAction& shown, QObject* parent);

    ActivityPane& pane() { return *mPane; }
    ResultCard& card() { return *mCard; }

Q_SIGNALS:
    void newsAsked();
    void logAsked();

protected:
    /// A click on the text of the docked panel unfolds the list.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connectUpdates();
    void connectImports();
    void showService(const OrvHost::ServiceReport& service);
    void showUpdateEnd(const UpdateSummary& summary, const OrvHost::UpdateOutcome& outcome);
    void showImportsEnd(const QString& summary, const QStringList& failed);
    void retry(const Activity& activity);
    void retryAll();

    LibraryActions& mLibrary;
    const UserLists& mLists;
    QAction& mShown;
    ActivityPane* mPane;
    ActivityModel& mModel;
    ResultCard* mCard;
    std::set<std::string> mInstalled; ///< file names of the catalogs that this update put in place
    QStringList mFailedImports;       ///< what "Retry" of the card imports; empty: it updates
    QTimer mUnfold;                   ///< a shorter import needs no list
    bool mIsUnfolded = false;         ///< not by the user
};
