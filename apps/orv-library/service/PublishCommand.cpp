#include "apps/orv-library/service/PublishCommand.h"

#include <QJsonArray>

#include "apps/catalog-service/ServicePublisher.h"
#include "apps/orv-library/Session.h"

void PublishCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("SOURCE", mSource, "The content folder to publish");
    syntax.argument("DIR", mTarget, "The folder of the service; it is created if it is missing");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus PublishCommand::run(Session& session) const
{
    session.console().resultSoFar({{"published", 0}, {"refused", QJsonArray()}});
    ServicePublisher publisher(mSource, mTarget);
    std::string reason;
    if (!publisher.publish(reason))
        throw CommandFailure(reason);

    QJsonArray refused;
    for (const auto& [name, why] : publisher.refusals()) {
        Console::complain(name + ": " + why);
        refused.append(QJsonObject{{"name", jsonText(name)}, {"why", jsonText(why)}});
    }
    const auto published = static_cast<qint64>(publisher.publishedCount());
    session.console().result({{"published", published}, {"refused", refused}},
                             "Published " + std::to_string(published) + " names in " + mTarget + ".\n");
    return publisher.refusals().empty() ? ExitStatus::Done : ExitStatus::Failed;
}
