#include "apps/orv-browser/activities/ImportController.h"

#include <QFile>
#include <QProgressDialog>

#include "OrvHost/imports/ArchiveImport.h"
#include "apps/orv-browser/models/Background.h"

/// What became of one source.
struct ImportController::Outcome
{
    fileString library;
    QString problem;
};

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
    if (!mIsRunning)
        next();
}

void ImportController::cancel()
{
    mQueue.clear();
    if (mCancelled)
        *mCancelled = true;
}

void ImportController::next()
{
    mIsRunning = !mQueue.isEmpty();
    if (!mIsRunning) {
        delete mDialog;
        mDialog = nullptr;
        Q_EMIT finished();
        return;
    }
    const QString source = mQueue.takeFirst();
    if (!mDialog) {
        mDialog = new QProgressDialog(mWindow);
        mDialog->setObjectName(QStringLiteral("importProgress"));
        mDialog->setWindowTitle(tr("Import"));
        mDialog->setRange(0, 0);
        mDialog->setMinimumDuration(300);
        connect(mDialog, &QProgressDialog::canceled, this, &ImportController::cancel);
    }
    mDialog->setLabelText(source);
    mCancelled = std::make_shared<std::atomic<bool>>(false);
    const auto show = [this](const QString& text) {
        if (mDialog)
            mDialog->setLabelText(text);
    };
    const auto progress = std::make_shared<Progress>(*this, show, mCancelled);
    Background::run(
        mPool, this,
        [root = mRoot, source, progress] {
            return importOne(root, QFile::encodeName(source).toStdString(), progress);
        },
        [this, source](const Outcome& outcome) { ended(source, outcome); });
}

ImportController::Outcome ImportController::importOne(const fileString& root, const std::string& source,
                                                      const std::shared_ptr<ProgressSubject>& progress)
{
    const OrvHost::ArchiveImport::Result result = OrvHost::ArchiveImport(root, {}).run(source, progress);
    if (result.isCancelled)
        return {{}, tr("cancelled")};
    return {result.library, QString::fromUtf8(result.error.c_str())};
}

void ImportController::ended(const QString& source, const Outcome& outcome)
{
    Q_EMIT imported(source, outcome.library, outcome.problem);
    next();
}
