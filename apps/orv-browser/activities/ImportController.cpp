#include "apps/orv-browser/activities/ImportController.h"

#include <utility>

#include <QFile>

#include "OrvHost/imports/ImportUndo.h"
#include "apps/orv-browser/activities/ImportProgress.h"
#include "apps/orv-browser/models/Background.h"
#include "apps/orv-browser/models/Reasons.h"

namespace {

bool isLast(const OrvHost::ImportUndo& undo, const OrvHost::ArchiveImport::Result& import)
{
    const auto last = undo.last();
    return last && last->library == import.library && last->textures == import.textures;
}

/// @return why the import was not taken back; empty when it was
QString takeBackNow(const fileString& root, const OrvHost::ArchiveImport::Result& import)
{
    try {
        OrvHost::ImportUndo undo(root);
        if (!isLast(undo, import))
            return ImportController::tr("it is not the last import any more");
        undo.run();
        return {};
    } catch (const std::exception& error) {
        return Reasons::text(error.what());
    }
}

} // namespace

ImportController::ImportController(const fileString& root, QObject* parent) : QObject(parent), mRoot(root)
{
    mPool.setMaxThreadCount(1);
}

ImportController::~ImportController()
{
    cancel();
    mPool.waitForDone();
}

void ImportController::import(const QStringList& sources)
{
    Q_EMIT queued(sources, !mIsRunning);
    mQueue += sources;
    mSummary.expect(static_cast<int>(sources.size()));
    if (!mIsRunning)
        next();
}

void ImportController::cancel()
{
    mQueue.clear();
    if (mCancelled)
        *mCancelled = true;
}

bool ImportController::takeBack(const Result& import)
{
    if (mIsRunning) {
        Q_EMIT takenBack({}, tr("Not undone: %1").arg(tr("an import goes on")));
        return false;
    }
    ++mBeingTakenBack;
    Background::run(
        mPool, this, [root = mRoot, import] { return takeBackNow(root, import); },
        [this, library = import.library](const QString& problem) {
            --mBeingTakenBack;
            Q_EMIT takenBack(library, problem.isEmpty() ? tr("The import was taken back.")
                                                        : tr("Not undone: %1").arg(problem));
        });
    return true;
}

QString ImportController::whyNotTakenBack(const Result& import) const
{
    const OrvHost::ImportUndo undo(mRoot);
    if (mIsRunning || mBeingTakenBack > 0 || !isLast(undo, import) || undo.refusal().empty())
        return {};
    return tr("The import of %1 cannot be taken back any more, because it was changed since.")
        .arg(QFile::decodeName(import.library.stem().toNativeString().c_str()));
}

void ImportController::next()
{
    mIsRunning = !mQueue.isEmpty();
    if (mIsRunning)
        start(mQueue.takeFirst());
    else
        finish();
}

void ImportController::start(const QString& source)
{
    mCancelled = std::make_shared<std::atomic<bool>>(false);
    const auto show = [this, source](const QString& step, qint64 done, qint64 whole) {
        Q_EMIT progressed(source, step, done, whole);
    };
    const auto progress = std::make_shared<ImportProgress>(*this, show, mCancelled);
    Background::run(
        mPool, this,
        [root = mRoot, source, progress] {
            return OrvHost::ArchiveImport(root, {}).run(QFile::encodeName(source).toStdString(), progress);
        },
        [this](const Result& result) { conclude(result); });
}

void ImportController::conclude(const Result& result)
{
    mSummary.add(result);
    Q_EMIT ended(result);
    if (result.error.empty())
        Q_EMIT imported(result);
    next();
}

void ImportController::finish()
{
    const ImportSummary summary = std::exchange(mSummary, {});
    Q_EMIT finished(summary.text(), summary.failed());
}
