#include "apps/orv-browser/start/SampleService.h"

#include <csignal>

#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include "OrvLibrary/host/Application.h"
#include "apps/orv-browser/start/ServiceOffer.h"

namespace {

constexpr int kMostMilliseconds = 3000; // to end
const QString kProgram = QStringLiteral("orv-library");

/// Ends with this program, however that ends.
class BoundProcess : public QProcess
{
protected:
    void setupChildProcess() override
    {
#ifdef __linux__
        prctl(PR_SET_PDEATHSIG, SIGTERM);
#endif
    }
};

} // namespace

SampleService::SampleService(QObject* parent) : QObject(parent) {}

SampleService::~SampleService()
{
    stop();
}

QString SampleService::program()
{
    const QString beside = QStandardPaths::findExecutable(kProgram, {QCoreApplication::applicationDirPath()});
    return beside.isEmpty() ? QStandardPaths::findExecutable(kProgram) : beside;
}

void SampleService::start()
{
    stop();
    mFolder = std::make_unique<QTemporaryDir>();
    if (!mFolder->isValid()) {
        Q_EMIT failed(mFolder->errorString());
        return;
    }
    run({QStringLiteral("sample"), mFolder->path()}, [this](bool isDone) {
        if (isDone)
            serve();
        else
            fail();
    });
}

void SampleService::serve()
{
    run({QStringLiteral("serve"), mFolder->path()}, [this](bool) { fail(); });
    connect(mProcess.get(), &QProcess::readyReadStandardOutput, this, &SampleService::addressCame);
}

/// @param ended called with whether the program has done its work, also where it could not be started
void SampleService::run(const QStringList& arguments, const std::function<void(bool)>& ended)
{
    if (mProcess)
        mProcess.release()->deleteLater(); // it is the sender
    mProcess = std::make_unique<BoundProcess>();
    connect(
        mProcess.get(), &QProcess::errorOccurred, this,
        [ended](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                ended(false);
        },
        Qt::QueuedConnection);
    connect(
        mProcess.get(), QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
        [ended](int status, QProcess::ExitStatus how) { ended(how == QProcess::NormalExit && status == 0); },
        Qt::QueuedConnection);
    mProcess->start(program(), arguments);
}

void SampleService::addressCame()
{
    if (!mProcess->canReadLine())
        return;
    const QString redirect =
        QJsonDocument::fromJson(mProcess->readLine()).object()[QStringLiteral("redirect")].toString();
    if (redirect.isEmpty())
        return fail();
    Q_EMIT ready({redirect, {}, {}, listed(QStringLiteral("Bonus")), listed(QStringLiteral("Manufacturer"))});
}

QStringList SampleService::listed(const QString& kind) const
{
    const Application* application = gApp;
    QStringList names;
    if (!application)
        return names;
    const std::string list =
        ServiceOffer::listName(application->contentIndexName().toNativeString(), kind.toStdString());
    QFile file(mFolder->filePath(QStringLiteral("content/") + QFile::decodeName(list.c_str())));
    if (file.open(QIODevice::ReadOnly))
        for (const std::string& name : ServiceOffer::namesIn(file.readAll().toStdString()))
            names << QString::fromStdString(name);
    return names;
}

void SampleService::fail()
{
    const QString said = QString::fromLocal8Bit(mProcess->readAllStandardError()).trimmed();
    const QString reason = said.isEmpty() ? mProcess->errorString() : said;
    mProcess->disconnect(this);
    mProcess.release()->deleteLater(); // it is the sender
    mFolder.reset();
    Q_EMIT failed(reason);
}

void SampleService::stop()
{
    if (mProcess) {
        mProcess->disconnect(this);
        mProcess->terminate();
        if (!mProcess->waitForFinished(kMostMilliseconds))
            mProcess->kill();
    }
    mProcess.reset();
    mFolder.reset();
}
