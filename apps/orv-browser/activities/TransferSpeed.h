#pragma once

#include <deque>

#include <QCoreApplication>
#include <QString>

/// How fast bytes come and how long the rest will take, from what was counted in the last seconds. A value;
/// the times are handed in.
class TransferSpeed
{
    Q_DECLARE_TR_FUNCTIONS(TransferSpeed)

public:
    /// @param milliseconds of any clock that goes on evenly
    /// @param bytes that were there at that time
    void note(qint64 milliseconds, qint64 bytes);

    /// Bytes a second; 0 when nothing came in the last seconds.
    double bytesPerSecond() const;
    /// For people, such as "1.3 MB/s, about 20 seconds left"; empty while too little is known.
    /// @param left bytes that are still to come
    QString text(qint64 left) const;

private:
    struct Sample
    {
        qint64 milliseconds;
        qint64 bytes;
    };
    std::deque<Sample> mSamples; ///< of the last seconds
};
