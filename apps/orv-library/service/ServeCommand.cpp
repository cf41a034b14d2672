#include "apps/orv-library/service/ServeCommand.h"

#include <cstdio>

#include <QJsonDocument>
#include <poll.h>

#include "apps/catalog-service/CatalogService.h"
#include "apps/orv-library/Session.h"
#include "apps/orv-library/console/Interrupt.h"

namespace {

constexpr std::int64_t kHighestPort = 65535;

/// One line, with and without --json, so that a program that starts this one can read the addresses.
QJsonObject addresses(const CatalogService& service)
{
    return {{"redirect", jsonText(service.redirectUrl())},
            {"manufacturers", jsonText(service.manufacturersUrl())},
            {"logos", jsonText(service.logosUrl())}};
}

void waitFor(const Interrupt& interrupt)
{
    pollfd polled{interrupt.descriptor(), POLLIN, 0};
    while (!Interrupt::requested())
        poll(&polled, 1, -1);
}

} // namespace

void ServeCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("DIR", mFolder, "The content folder");
    syntax.option("--address", mAddress, "A", "The address to listen on (default: 127.0.0.1)");
    syntax.option("--port", mPort, "N", "The port to listen on; 0 picks a free one (default: 0)");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus ServeCommand::run(Session& session) const
{
    if (mPort < 0 || mPort > kHighestPort)
        throw UsageError("--port: " + std::to_string(mPort) + " is no port");
    session.console().resultSoFar(
        {{"redirect", QJsonValue()}, {"manufacturers", QJsonValue()}, {"logos", QJsonValue()}});
    const Interrupt interrupt;
    CatalogService service(mFolder);
    std::string reason;
    if (!service.start(mAddress, static_cast<int>(mPort), reason))
        throw CommandFailure(reason);
    const QJsonObject document = addresses(service);
    const QByteArray line = QJsonDocument(document).toJson(QJsonDocument::Compact) + "\n";
    session.console().result(document, line.toStdString());
    if (!Console::flush())
        throw CommandFailure("cannot write standard output");
    waitFor(interrupt);
    return ExitStatus::Done;
}
