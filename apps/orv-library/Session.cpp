#include "apps/orv-library/Session.h"

#include <filesystem>

#include <QFile>

#include "apps/orv-library/Command.h"

Session::Session(const GlobalOptions& options) : mOptions(options), mConsole(options.json) {}

Session::~Session() = default;

OrvHost::AppHost& Session::host()
{
    return make({});
}

OrvHost::AppHost& Session::existingHost()
{
    requireRoot();
    return make({});
}

void Session::requireRoot() const
{
    if (!rootExists())
        throw CommandFailure(root().toNativeString() +
                             ": there is no library; 'orv-library update' makes one");
}

OrvHost::AppHost& Session::rootlessHost()
{
    OrvHost::AppHost::Settings settings;
    settings.createsFolders = false;
    if (!rootExists())
        settings.temporaryFolder = makeTemporaryFolder();
    return make(settings);
}

bool Session::rootExists() const
{
    std::error_code error;
    return std::filesystem::is_directory(root().toNativeString(), error);
}

fileString Session::makeTemporaryFolder()
{
    mTemporaryFolder = std::make_unique<QTemporaryDir>();
    if (!mTemporaryFolder->isValid())
        throw CommandFailure("cannot make a temporary folder: " +
                             mTemporaryFolder->errorString().toStdString());
    return fileString(QFile::encodeName(mTemporaryFolder->path()).toStdString());
}

OrvHost::AppHost& Session::make(OrvHost::AppHost::Settings settings)
{
    if (!mHost) {
        settings.root = fileString(mOptions.root);
        mHost = std::make_unique<OrvHost::AppHost>(settings);
    }
    return *mHost;
}
