#include "apps/orv-library/records/StylesCommand.h"

#include <QJsonArray>

#include "OrvLibrary/Utility/ObjectStyleManager.h"
#include "apps/orv-library/Session.h"

namespace {

constexpr long kFirstStyle = 10000;
constexpr long kLastStyle = 10014;

struct Style
{
    long number;
    std::string name;
};

/// The style manager. The host must be installed first, because its texts are the names.
const ObjectStyleManager& styleManager(Session& session)
{
    session.rootlessHost();
    return ObjectStyleManager::getObjectStyleManager();
}

void print(Session& session, const std::vector<Style>& styles)
{
    QJsonArray array;
    std::string text;
    for (const Style& style : styles) {
        array.append(
            QJsonObject{{"number", static_cast<qint64>(style.number)}, {"name", jsonText(style.name)}});
        text += std::to_string(style.number) + "  " + style.name + "\n";
    }
    session.console().result({{"styles", array}}, text);
}

} // namespace

void StylesCommand::declare(CommandSyntax& syntax)
{
    syntax.action("list", "Print all styles with their numbers").runs(list);
    CommandSyntax& one = syntax.action("show", "Print the name of one style");
    one.argument("N", mNumber, "Number of the style");
    one.runs([this](Session& session) { return show(session); });
}

ExitStatus StylesCommand::list(Session& session)
{
    session.console().resultSoFar({{"styles", QJsonArray()}});
    const ObjectStyleManager& manager = styleManager(session);
    std::vector<Style> styles;
    for (long number = kFirstStyle; number <= kLastStyle; ++number)
        styles.push_back({number, manager.getStyleName(number)});
    print(session, styles);
    return ExitStatus::Done;
}

ExitStatus StylesCommand::show(Session& session) const
{
    session.console().resultSoFar({{"styles", QJsonArray()}});
    const std::string& styleName = styleManager(session).getStyleName(mNumber);
    if (styleName.empty())
        throw CommandFailure("no object style has the number " + std::to_string(mNumber));
    print(session, {{mNumber, styleName}});
    return ExitStatus::Done;
}
