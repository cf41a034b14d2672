#include "apps/orv-browser/activities/ImportSummary.h"

#include <QFile>
#include <QFileInfo>

#include "OrvLibrary/IO/ErrorLog.h"
#include "apps/orv-browser/models/Reasons.h"

void ImportSummary::add(const OrvHost::ArchiveImport::Result& result)
{
    if (result.isCancelled)
        return;
    const QString source = QFile::decodeName(result.source.c_str());
    const QString name = QFileInfo(source).fileName();
    if (!result.error.empty())
        mFailed << source;
    if (result.error.empty()) {
        mImported << name;
    } else if (mFailures.size() < kMostFailures) {
        mFailures << tr("%1 was not imported: %2").arg(name, Reasons::text(result.error));
    } else {
        ++mLeftOut;
        Library::ErrorLog() << (name.toStdString() + " was not imported: " + result.error + "\n");
    }
}

QString ImportSummary::text() const
{
    const int imported = static_cast<int>(mImported.size());
    const int failed = static_cast<int>(mFailed.size());
    QStringList lines;
    if (mExpected > 1)
        lines << tr("%n of %1 archive(s) imported.", nullptr, imported).arg(mExpected);
    else if (imported == 1)
        lines << tr("%1 was imported.").arg(mImported.front());
    lines << mFailures;
    if (mLeftOut > 0)
        lines << tr("%n more not imported; the log has the reasons.", nullptr, mLeftOut);
    // The user may have cancelled when all was done.
    if (imported + failed < mExpected)
        lines << tr("The import was cancelled.");
    return lines.join(QLatin1Char('\n'));
}
