#pragma once

#include <deque>

#include <QCoreApplication>
#include <QString>

/// Computes the speed of a transfer and its remaining time from the counts of the last seconds. A plain
/// value; the caller passes the times.
class TransferSpeed
{
    Q_DECLARE_TR_FUNCTIONS(TransferSpeed)

public:
    /// @param milliseconds of any steady clock
    /// @param bytes the count at this time
    void note(qint64 milliseconds, qint64 bytes);

    /// Bytes per second; 0 if nothing arrived in the last seconds.
    double bytesPerSecond() const;
    /// For people, such as "1.3 MB/s, about 20 seconds left"; empty while too little is known.
    /// @param left remaining bytes
    QString text(qint64 left) const;

private:
    struct Sample
    {
        qint64 milliseconds;
        qint64 bytes;
    };
    std::deque<Sample> mSamples; ///< of the last seconds
};
