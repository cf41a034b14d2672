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

/// The pictures of items, loaded off the interface thread when a view asks for them and kept while there is
/// room. Lives on the interface thread.
class PictureStore : public QObject
{
    Q_OBJECT

public:
    /// Where a picture stands.
    enum class State
    {
        Waiting, ///< it was asked for and comes
        Missing, ///< the item has none, or it cannot be read
        Broken,  ///< the catalog holds something that is no picture
        Here
    };

    explicit PictureStore(QObject* parent = nullptr);
    /// Waits for the load that is under way.
    ~PictureStore() override;

    /// Asks for the picture of an item when it is not there yet.
    State ask(const fileString& database, long long item);
    /// The picture; null unless `ask` says that it is here.
    QImage picture(const fileString& database, long long item) const;
    /// Forgets the pictures of a database that was replaced.
    void forget(const fileString& database);

Q_SIGNALS:
    /// Pictures that were asked for have come.
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

    QThreadPool mPool; ///< one thread: a disk serves one reader best
    QCache<QString, Entry> mKept;
    std::deque<Key> mWanted;             ///< the last one is the first to be loaded: it is on the screen
    std::set<Key> mAsked;                ///< wanted, or being loaded
    std::map<fileString, int> mVersions; ///< how often each database was forgotten
    bool mIsLoading = false;
};
