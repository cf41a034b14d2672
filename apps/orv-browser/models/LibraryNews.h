#pragma once

#include <cstdint>
#include <memory>
#include <set>

#include <QDateTime>
#include <QFileSystemWatcher>
#include <QObject>
#include <QThreadPool>

#include "apps/orv-browser/models/NewItems.h"

class UserLists;

/// The items that updates brought since the user last looked, and the catalogs that have an update available.
/// The careful host notes both below the root, whichever program updated or checked. Items that were
/// installed before the window first looked are not new. Lives on the interface thread.
class LibraryNews : public QObject
{
    Q_OBJECT

public:
    /// @param lists keep what the user has seen; outlive the object
    LibraryNews(fileString root, UserLists& lists, QObject* parent = nullptr);
    /// Waits for the reading that is under way.
    ~LibraryNews() override;

    /// Never null.
    const std::shared_ptr<const NewItems>& items() const { return mItems; }
    /// Whether the last check found a newer version of an installed catalog.
    bool isWaiting(const fileString& database) const { return mWaiting.count(database) != 0; }

    /// When the service was last asked, by whichever program; invalid if never.
    const QDateTime& lastCheck() const { return mLastCheck; }

    /// Reads again what is noted, in the background.
    void refresh();
    bool isReading() const { return mIsReading; }
    /// The number of the last update that brought news.
    std::int64_t lastRun() const { return mLastRun; }
    /// From now on only what came after an update is new.
    void setSeen(std::int64_t run);

Q_SIGNALS:
    void changed();

private:
    struct Notes;

    void take(const Notes& notes);

    fileString mRoot;
    UserLists& mLists;
    std::shared_ptr<const NewItems> mItems;
    std::set<fileString> mWaiting;
    QDateTime mLastCheck;
    std::int64_t mLastRun = 0;
    bool mIsReading = false;
    bool mIsStale = false; ///< whether to read again after the reading that is under way
    QFileSystemWatcher mWatcher;
    QThreadPool mPool;
};
