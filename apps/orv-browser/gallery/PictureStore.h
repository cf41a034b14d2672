#pragma once

#include <set>
#include <utility>

#include <QCache>
#include <QIcon>
#include <QObject>
#include <QThreadPool>

#include "OrvLibrary/host/fileString.h"

/// The pictures of items, loaded off the interface thread when a view asks for them and kept while there is
/// room. Lives on the interface thread.
class PictureStore : public QObject
{
    Q_OBJECT

public:
    explicit PictureStore(QObject* parent = nullptr);
    /// Waits for the load that is under way.
    ~PictureStore() override;

    /// The picture of an item; a plain one until it is loaded, and for ever when the item has none or a
    /// broken one.
    QIcon picture(const fileString& database, long long item);
    /// Forgets the pictures of a database that was replaced.
    void forget(const fileString& database);

Q_SIGNALS:
    /// A picture that was asked for has come.
    void loaded(const fileString& database, long long item);

private:
    using Key = std::pair<fileString, long long>;

    void keep(const Key& key, const QImage& image);

    QThreadPool mPool; ///< one thread: a disk serves one reader best
    QIcon mPlaceholder;
    QCache<QString, QIcon> mIcons;
    std::set<Key> mAsked;
    int mAskedSoFar = 0; ///< the last one that was asked for is the first to be loaded: it is on the screen
};
