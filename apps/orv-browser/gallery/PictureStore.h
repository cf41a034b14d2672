#pragma once

#include <deque>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include <QCache>
#include <QImage>
#include <QObject>
#include <QThreadPool>

#include "OrvLibrary/host/fileString.h"

/// Loads the pictures of items on another thread when a view needs them, and keeps as many as fit. Lives on
/// the interface thread.
class PictureStore : public QObject
{
    Q_OBJECT

public:
    /// The state of a picture.
    enum class State
    {
        Waiting, ///< it is being loaded
        Missing, ///< the item has none, or the catalog cannot be read
        Broken,  ///< its data is not a picture
        Here
    };

    explicit PictureStore(QObject* parent = nullptr);
    /// Waits for the current load.
    ~PictureStore() override;

    /// Starts to load the picture of an item, unless it is there.
    State ask(const fileString& database, long long item);
    /// The picture; null unless `ask` has returned that it is there.
    QImage picture(const fileString& database, long long item) const;
    /// Drops the pictures of a database that was replaced.
    void forget(const fileString& database);

Q_SIGNALS:
    /// Pictures have been loaded.
    void loaded();

private:
    using Key = std::pair<fileString, long long>;
    struct Entry
    {
        QImage image;
        State state = State::Missing;
    };
    struct Loaded
    {
        Key key;
        int version;
        Entry entry;
    };

    static QString cacheKey(const Key& key);
    static std::vector<Loaded> read(const std::vector<Loaded>& wanted);
    void load();
    void keep(const std::vector<Loaded>& pictures);

    QThreadPool mPool; ///< one thread, because a disk serves one reader best
    QCache<QString, Entry> mKept;
    std::deque<Key> mWanted;             ///< the last one is loaded first, because it is on the screen
    std::set<Key> mAsked;                ///< wanted, or being loaded
    std::map<fileString, int> mVersions; ///< counts how often each database was dropped
    bool mIsLoading = false;
};
