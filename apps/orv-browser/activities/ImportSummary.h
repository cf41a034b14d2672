#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include "OrvHost/imports/ArchiveImport.h"

/// The results of several imports one after the other, reported at the end. For example:
/// "2 of 3 archives were imported.", and below it which one was not, and why. Lives on the interface thread.
class ImportSummary
{
    Q_DECLARE_TR_FUNCTIONS(ImportSummary)

public:
    /// @param count of archives that the user asked for in addition
    void expect(int count) { mExpected += count; }
    void add(const OrvHost::ArchiveImport::Result& result);

    /// For people; a line for each sentence. The first five failures are told with their reasons. The log
    /// has the reasons of the others.
    QString text() const;
    /// The sources that were not imported, without those that were cancelled.
    const QStringList& failed() const { return mFailed; }

private:
    static constexpr int kMostFailures = 5;

    int mExpected = 0;
    int mLeftOut = 0; ///< failures beyond the first five
    QStringList mFailed;
    QStringList mImported;
    QStringList mFailures; ///< a sentence for each
};
