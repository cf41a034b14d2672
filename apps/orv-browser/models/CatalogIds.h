#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <QObject>
#include <QThreadPool>

#include "OrvLibrary/host/fileString.h"

/// The library database ids of catalogs, by which filters know them: read off the interface thread and kept
/// until a catalog is replaced. Lives on the interface thread.
class CatalogIds : public QObject
{
    Q_OBJECT

public:
    explicit CatalogIds(QObject* parent = nullptr);
    /// Waits for the reading that is under way.
    ~CatalogIds() override;

    /// Reads the ids that are not known, also of catalogs that could not be read before.
    void read(const std::vector<fileString>& databases);
    bool isReading() const { return mReadings > 0; }
    /// The id; none while it is not known and when the catalog cannot be read.
    std::optional<std::string> id(const fileString& database) const;
    /// To be called when a catalog was replaced, before it is read again.
    void forget(const fileString& database);

Q_SIGNALS:
    /// All ids that were asked for are there.
    void ready();

private:
    using Ids = std::map<fileString, std::string>;

    void take(const Ids& found, const std::map<fileString, int>& asked);

    QThreadPool mPool;
    Ids mIds;
    std::map<fileString, int> mVersions; ///< how often each catalog was forgotten
    int mReadings = 0;
};
