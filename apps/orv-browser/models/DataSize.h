#pragma once

#include <QCoreApplication>
#include <QString>

/// Sizes of data for people, in kB, MB and GB of 1,000 each, as in the library.
class DataSize
{
    Q_DECLARE_TR_FUNCTIONS(DataSize)

public:
    /// Such as "4.6 MB".
    static QString text(qint64 bytes);
    /// Such as "1.3 of 4.6 MB": both numbers in the unit of the second one.
    static QString part(qint64 done, qint64 whole);
    /// The library's unit in an update, "kB".
    static QString kilobyte() { return QStringLiteral("kB"); }
};
