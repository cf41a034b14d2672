#include "apps/orv-library/service/SampleCommand.h"

#include <QDir>
#include <QFile>

#include "apps/orv-library/Session.h"
#include "apps/orv-library/service/SampleContent.h"

void SampleCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("DIR", mFolder, "The folder to write; it is created if it is missing");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus SampleCommand::run(Session& session) const
{
    const QString absolute =
        QDir::cleanPath(QDir::current().absoluteFilePath(QFile::decodeName(mFolder.c_str())));
    const std::string folder = QFile::encodeName(absolute).toStdString();
    session.console().resultSoFar({{"content", QJsonValue()}, {"files", 0}});
    SampleContent content(folder);
    content.write();

    const auto files = static_cast<qint64>(content.files().size());
    session.console().result({{"content", absolute}, {"files", files}},
                             "Wrote " + std::to_string(files) + " files to " + folder + ".\n");
    return ExitStatus::Done;
}
