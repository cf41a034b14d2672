#pragma once

#include <QCoreApplication>
#include <QString>

/// Sizes of data for people, all in one family of units: kB, MB and GB of 1,000 each, as the library counts.
class DataSize
{
    Q_DECLARE_TR_FUNCTIONS(DataSize)

public:
    /// Such as "4.6 MB".
    static QString text(qint64 bytes);
    /// Such as "1.3 of 4.6 MB": both in the unit of the whole.
    static QString part(qint64 done, qint64 whole);
    /// The unit of what the library counts in an update, "kB".
    static QString kilobyte() { return QStringLiteral("kB"); }
};
