#include "apps/orv-library/SettingsCommand.h"

#include <QJsonArray>

#include "OrvHost/update/HostLock.h"
#include "apps/orv-library/Session.h"

using OrvHost::Settings;

namespace {

/// A value for people. Each text of a list has its own line.
std::string readable(const QJsonValue& value)
{
    if (value.isDouble())
        return std::to_string(static_cast<std::int64_t>(value.toDouble())) + "\n";
    if (!value.isArray())
        return value.toString().toStdString() + "\n";
    std::string lines;
    for (const QJsonValue text : value.toArray())
        lines += text.toString().toStdString() + "\n";
    return lines;
}

std::string readable(const QJsonObject& stored)
{
    std::string lines;
    for (auto member = stored.begin(); member != stored.end(); ++member) {
        std::string value = readable(member.value());
        for (std::size_t at = value.find('\n'); at + 1 < value.size(); at = value.find('\n', at))
            value.replace(at, 1, ", ");
        lines += member.key().toStdString() + " = " + value;
    }
    return lines.empty() ? "Nothing is set.\n" : lines;
}

/// The document if the file cannot be read.
void nothingSoFar(Session& session)
{
    session.console().resultSoFar({{"settings", QJsonObject()}, {"defaults", Settings::defaults()}});
}

void print(Session& session, const Settings& settings)
{
    const QJsonObject stored = settings.stored();
    session.console().result({{"settings", stored}, {"defaults", Settings::defaults()}}, readable(stored));
}

/// Reports a refused value as wrong usage, because only the command line is at fault.
template <class Change>
void tryOut(Change change)
try {
    Settings settings;
    change(settings);
} catch (const Settings::Refusal& refusal) {
    throw UsageError(refusal.what());
}

template <class Change>
ExitStatus changed(Session& session, const fileString& root, Change change)
{
    const OrvHost::HostLock lock = OrvHost::HostLock::ofChange("settings");
    Settings settings = Settings::load(root);
    change(settings);
    settings.save(root);
    print(session, settings);
    return ExitStatus::Done;
}

} // namespace

void SettingsCommand::declare(CommandSyntax& syntax)
{
    syntax.runs(list);
    syntax.optionalAction("list", "Print the settings").runs(list);
    CommandSyntax& getting = syntax.optionalAction("get", "Print one setting, or its default");
    getting.argument("KEY", mKey, "The setting");
    getting.runs([this](Session& session) { return get(session); });
    CommandSyntax& setting = syntax.optionalAction("set", "Set one; creates a missing root");
    setting.argument("KEY", mKey, "The setting");
    setting.arguments("VALUE", mValues, "The value; lists accept several", CommandSyntax::Presence::Required);
    setting.runs([this](Session& session) { return set(session); });
    CommandSyntax& unsetting = syntax.optionalAction("unset", "Reset one to its default");
    unsetting.argument("KEY", mKey, "The setting");
    unsetting.runs([this](Session& session) { return unset(session); });
}

ExitStatus SettingsCommand::list(Session& session)
{
    nothingSoFar(session);
    print(session, Settings::load(session.existingHost().root()));
    return ExitStatus::Done;
}

ExitStatus SettingsCommand::get(Session& session) const
{
    if (!Settings::isKey(mKey))
        throw UsageError("'" + mKey + "' is no setting");
    nothingSoFar(session);
    const QJsonObject stored = Settings::load(session.existingHost().root()).stored();
    const QString key = QString::fromStdString(mKey);
    const QJsonValue fallback = Settings::defaults()[key];
    const QJsonObject found = stored.contains(key) ? QJsonObject{{key, stored[key]}} : QJsonObject();
    session.console().result({{"settings", found}, {"defaults", QJsonObject{{key, fallback}}}},
                             readable(stored.contains(key) ? stored[key] : fallback));
    return ExitStatus::Done;
}

ExitStatus SettingsCommand::set(Session& session) const
{
    const auto change = [this](Settings& settings) { settings.set(mKey, mValues); };
    tryOut(change);
    nothingSoFar(session);
    return changed(session, session.host().root(), change);
}

ExitStatus SettingsCommand::unset(Session& session) const
{
    const auto change = [this](Settings& settings) { settings.unset(mKey); };
    tryOut(change);
    nothingSoFar(session);
    return changed(session, session.existingHost().root(), change);
}
