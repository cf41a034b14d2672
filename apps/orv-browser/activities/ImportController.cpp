#include "apps/orv-browser/activities/ImportController.h"

#include <utility>

#include <QFile>
#include <QProgressDialog>
#include <QTimer>

#include "OrvHost/imports/ImportUndo.h"
#include "apps/orv-browser/models/Background.h"

namespace {

constexpr int kShowMilliseconds = 200; // a shorter import needs no dialog

/// @return why the import was not taken back; empty when it was
QString takeBackNow(const fileString& root, const OrvHost::ArchiveImport::Result& import)
{
    try {
        OrvHost::ImportUndo undo(root);
        const auto last = undo.last();
        if (!last || last->library != import.library || last->textures != import.textures)
            return ImportController::tr("it is not the last import any more");
        undo.run();
        return {};
    } catch (const std::exception& error) {
        return QString::fromUtf8(error.what());
    }
}

} // namespace

/// Hands the labels of the import to the dialog; called on the import's thread.
class ImportController::Progress : public ProgressSubject
{
public:
    Progress(QObject& receiver, std::function<void(const QString&)> show,
             std::shared_ptr<std::atomic<bool>> cancelled)
        : mReceiver(receiver), mShow(std::move(show)), mCancelled(std::move(cancelled))
    {
    }

    bool checkCancel(bool) override { return *mCancelled; }
    void createSubProgress(std::uint64_t) override {}
    void increment(const marl::unicode::String& label1, const marl::unicode::String&) override
    {
        show(label1);
    }
    void updateLabels(const marl::unicode::String& label1, const marl::unicode::String&) override
    {
        show(label1);
    }

private:
    void show(const marl::unicode::String& label)
    {
        const QString text = QString::fromStdString(label.toUTF8String());
        QMetaObject::invokeMethod(
            &mReceiver, [show = mShow, text] { show(text); }, Qt::QueuedConnection);
    }

    QObject& mReceiver;
    std::function<void(const QString&)> mShow;
    std::shared_ptr<std::atomic<bool>> mCancelled;
};

ImportController::ImportController(const fileString& root, QWidget* window)
    : QObject(window), mRoot(root), mWindow(window)
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
    Background::run(
        mPool, this, [root = mRoot, import] { return takeBackNow(root, import); },
        [this, library = import.library](const QString& problem) {
            Q_EMIT takenBack(library, problem.isEmpty() ? tr("The import was taken back.")
                                                        : tr("Not undone: %1").arg(problem));
        });
    return true;
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
    showDialog(source);
    mCancelled = std::make_shared<std::atomic<bool>>(false);
    const auto show = [this](const QString& text) {
        if (mDialog)
            mDialog->setLabelText(text);
    };
    const auto progress = std::make_shared<Progress>(*this, show, mCancelled);
    Background::run(
        mPool, this,
        [root = mRoot, source, progress] {
            return OrvHost::ArchiveImport(root, {}).run(QFile::encodeName(source).toStdString(), progress);
        },
        [this](const Result& result) { ended(result); });
}

void ImportController::showDialog(const QString& source)
{
    if (!mDialog) {
        mDialog = new QProgressDialog(mWindow);
        mDialog->setObjectName(QStringLiteral("importProgress"));
        mDialog->setWindowTitle(tr("Import"));
        mDialog->setRange(0, 0);
        // The dialog's own clock waits four seconds where the amount of work is unknown.
        QTimer::singleShot(kShowMilliseconds, mDialog, &QWidget::show);
        connect(mDialog, &QProgressDialog::canceled, this, &ImportController::cancel);
    }
    mDialog->setLabelText(source);
}

void ImportController::ended(const Result& result)
{
    mSummary.add(result);
    if (result.error.empty())
        Q_EMIT imported(result);
    next();
}

void ImportController::finish()
{
    delete mDialog;
    mDialog = nullptr;
    Q_EMIT finished(std::exchange(mSummary, {}).text());
}
