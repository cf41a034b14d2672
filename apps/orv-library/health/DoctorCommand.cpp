#include "apps/orv-library/health/DoctorCommand.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include <QJsonArray>

#include "OrvHost/health/Masking.h"
#include "OrvHost/health/SupportReport.h"
#include "OrvHost/imports/LibrarySource.h"
#include "apps/catalog-service/ZipWriter.h"
#include "apps/orv-library/Session.h"
#include "apps/orv-library/health/StatusReport.h"

using OrvHost::Doctor;

namespace {

QJsonObject document(const std::vector<Doctor::Step>& steps)
{
    QJsonArray list;
    for (const Doctor::Step& step : steps)
        list.append(
            QJsonObject{{"step", jsonText(step.name)},
                        {"ok", step.ok ? QJsonValue(*step.ok) : QJsonValue()},
                        {"ms", static_cast<qint64>(step.milliseconds)},
                        {"text", jsonText(step.text)},
                        {"advice", step.advice.empty() ? QJsonValue() : QJsonValue(jsonText(step.advice))}});
    return {{"steps", list}, {"report", QJsonValue()}};
}

std::string readable(const std::vector<Doctor::Step>& steps)
{
    std::string text;
    for (const Doctor::Step& step : steps) {
        const char* const mark = !step.ok ? "  -   " : *step.ok ? "  ok  " : "FAILED";
        text += std::string(mark) + "  " + step.name + ": " + step.text;
        text += step.ok ? " (" + std::to_string(step.milliseconds) + " ms)\n" : "\n";
        if (!step.advice.empty())
            text += "        " + step.advice + "\n";
    }
    return text;
}

} // namespace

void DoctorCommand::declare(CommandSyntax& syntax)
{
    mOptions.declare(syntax);
    syntax.option("--report", mReport, "FILE.zip", "Pack a report for support, without names and secrets");
    syntax.runs([this](Session& session) { return run(session); });
}

/// @return why the settings cannot be used; empty if they can
std::string DoctorCommand::completeOptions(Session& session)
{
    mOptions.complete(OrvHost::Settings());
    try {
        mOptions.complete(OrvHost::Settings::load(session.root()));
        mOptions.apply();
        return {};
    } catch (const UsageError&) {
        throw;
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

ExitStatus DoctorCommand::run(Session& session)
{
    session.console().resultSoFar(document({}));
    const std::string settingsProblem = completeOptions(session);
    session.rootlessHost();
    const std::string index =
        mOptions.index().empty() ? OrvHost::AppHost::kDefaultContentIndex : mOptions.index();
    const std::vector<Doctor::Step> steps =
        Doctor({session.root(), mOptions.values(), settingsProblem, index}).examine();
    QJsonObject result = document(steps);
    session.console().resultSoFar(result, readable(steps));
    std::string contents;
    if (!mReport.empty()) {
        contents = writeReport(session.root(), steps);
        result["report"] = jsonText(OrvHost::absolutePath(fileString(mReport)).toNativeString());
    }
    session.console().result(result, readable(steps) + contents);
    const auto failed =
        std::find_if(steps.begin(), steps.end(), [](const Doctor::Step& step) { return step.ok == false; });
    if (failed == steps.end())
        return ExitStatus::Done;
    Console::complain(failed->name + ": " + failed->text);
    return ExitStatus::Failed;
}

/// @return lines that tell what the report contains
std::string DoctorCommand::writeReport(const fileString& root, const std::vector<Doctor::Step>& steps) const
{
    ZipWriter archive(mReport);
    std::string lines = "Wrote " + mReport + ", without names of users and secrets:\n";
    std::map<std::string, std::string> files = OrvHost::SupportReport::files(root, steps);
    if (std::filesystem::is_directory(root.toNativeString()))
        files["status.txt"] = OrvHost::Masking::withoutNames(StatusReport::of(root).text);
    for (const auto& [name, content] : files) {
        archive.add(name, content);
        lines += "  " + name + ", " + std::to_string(content.size()) + " bytes\n";
    }
    archive.close();
    return lines;
}
