#include "apps/orv-library/CommandLine.h"

#include <algorithm>
#include <list>

#include <CLI/CLI.hpp>

#include "OrvLibrary/OrvLibraryVersion.h"
#include "apps/orv-library/OptionSyntax.h"

namespace {

constexpr const char* kProgram = "orv-library";
constexpr const char* kGlobalGroup = "Global options";

/// The innermost command or action that was given.
const CLI::App& chosenApp(const CLI::App& app)
{
    const std::vector<CLI::App*> given = app.get_subcommands();
    return given.empty() ? app : chosenApp(*given.front());
}

/// Joins the lines of a reason, because the parsing library sometimes uses several.
std::string oneLine(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

/// Makes an empty value after "=" a separate argument, because the parsing library would use the next word
/// instead, and marks words in brackets.
std::vector<std::string> prepared(const std::vector<std::string>& arguments)
{
    std::vector<std::string> words;
    for (const std::string& argument : arguments) {
        const bool emptyValue = argument.size() > 3 && argument.compare(0, 2, "--") == 0 &&
                                argument.find('=') == argument.size() - 1;
        words.push_back(emptyValue ? argument.substr(0, argument.size() - 1)
                                   : OptionSyntax::protectedWord(argument));
        if (emptyValue)
            words.emplace_back();
    }
    return words;
}

} // namespace

class CommandLine::Private
{
public:
    explicit Private(const CommandList& commands)
        : mApp(
              "Updates the catalogs of a library, imports library archives, and manages filters and records.",
              kProgram)
    {
        mApp.require_subcommand(1);
        mApp.get_formatter()->column_width(34);
        mApp.get_formatter()->label("SUBCOMMAND", "COMMAND");
        mApp.get_formatter()->label("Positionals", "Arguments");
        mApp.get_formatter()->label("REQUIRED", "(required)");
        for (const auto& command : commands) {
            CLI::App* app =
                mApp.add_subcommand(command->name(), command->summary())->group(OptionSyntax::kCommandGroup);
            mSyntaxes.emplace_back(*app, mWork);
            command->declare(mSyntaxes.back());
        }
        addGlobalOptions(mApp);
    }

    /// Adds the global options everywhere, because users write them after any word.
    void addGlobalOptions(CLI::App& app)
    {
        app.set_help_flag("-h,--help", "Print this help and exit")->group(kGlobalGroup);
        app.set_version_flag("-V,--version", std::string(kProgram) + " " + ORVLIBRARY_VERSION_STRING,
                             "Print the version and exit")
            ->group(kGlobalGroup);
        addTextOption(app, "--root", "DIR", mOptions.root,
                      "Root of the library's folders (default: $ORV_LIBRARY_ROOT, otherwise\n"
                      "in the user's data folder)");
        app.add_flag_callback(
               "--json", [this] { mOptions.json = true; }, "Print one JSON document on standard output")
            ->group(kGlobalGroup);
        addProgressOption(app);
        addTextOption(app, "--trace", "FILE", mOptions.traceFile,
                      "Append each call of the host object to FILE as a JSON line");
        for (CLI::App* command : app.get_subcommands([](CLI::App*) { return true; }))
            addGlobalOptions(*command);
    }

    /// Sets the value at once, so that the last one in the whole line counts.
    static CLI::Option* addTextOption(CLI::App& app, const std::string& name, const std::string& valueName,
                                      std::string& target, const std::string& help)
    {
        CLI::Option* option = app.add_option_function<std::string>(
            name, [&target](const std::string& value) { target = value; }, help);
        return OptionSyntax::takesText(option)->type_name(valueName)->take_last()->trigger_on_parse()->group(
            kGlobalGroup);
    }

    void addProgressOption(CLI::App& app)
    {
        static const std::map<std::string, ProgressMode> kModes = {{"auto", ProgressMode::Automatic},
                                                                   {"bar", ProgressMode::Bar},
                                                                   {"plain", ProgressMode::Plain},
                                                                   {"none", ProgressMode::None}};
        CLI::Option* option = app.add_option_function<std::string>(
            "--progress", [this](const std::string& value) { mOptions.progress = kModes.at(value); },
            "Progress on standard error; auto: a bar on a terminal, otherwise lines");
        option->check([](const std::string& value) {
            return kModes.count(value) ? std::string() : "'" + value + "' is none of auto, bar, plain, none";
        });
        option->transform(OptionSyntax::unprotected)
            ->type_name("auto|bar|plain|none")
            ->take_last()
            ->trigger_on_parse()
            ->group(kGlobalGroup);
    }

    Outcome parse(const std::vector<std::string>& arguments)
    {
        std::vector<std::string> words = prepared(arguments);
        // The parsing library takes the words from the end.
        std::reverse(words.begin(), words.end());
        try {
            mApp.parse(std::move(words));
            return Outcome::Run;
        } catch (const CLI::CallForHelp&) {
            mText = chosenApp(mApp).help(chosenPrefix());
        } catch (const CLI::CallForVersion& version) {
            mText = std::string(version.what()) + "\n";
        } catch (const CLI::RequiredError& error) {
            mText = usage(missingCommand(error.what()));
            return Outcome::WrongUsage;
        } catch (const CLI::ParseError& error) {
            mText = usage(error.what());
            return Outcome::WrongUsage;
        }
        return Outcome::Help;
    }

    /// Replaces the parsing library's text for a missing command by our own.
    std::string missingCommand(const std::string& reason) const
    {
        if (reason.find("subcommand") == std::string::npos)
            return reason;
        const std::vector<std::string> unknown = chosenApp(mApp).remaining();
        if (unknown.empty())
            return "no command given";
        return "'" + unknown.front() + (unknown.front()[0] == '-' ? "' is no option" : "' is no command");
    }

    /// The words before the command's own name in its usage line.
    std::string chosenPrefix() const
    {
        std::string prefix;
        for (const CLI::App* app = chosenApp(mApp).get_parent(); app; app = app->get_parent())
            prefix.insert(0, app->get_name() + (prefix.empty() ? "" : " "));
        return prefix;
    }

    std::string usage(const std::string& reason) const
    {
        const std::string prefix = chosenPrefix();
        const std::string command = prefix + (prefix.empty() ? "" : " ") + chosenApp(mApp).get_name();
        return std::string(kProgram) + ": " + oneLine(OptionSyntax::unprotected(reason)) + "\nTry '" +
               command + " --help'.\n";
    }

    CLI::App mApp;
    std::list<OptionSyntax> mSyntaxes;
    GlobalOptions mOptions;
    CommandSyntax::Work mWork;
    std::string mText;
};

CommandLine::CommandLine(const CommandList& commands) : mPrivate(std::make_unique<Private>(commands)) {}

CommandLine::~CommandLine() = default;

CommandLine::Outcome CommandLine::parse(const std::vector<std::string>& arguments)
{
    return mPrivate->parse(arguments);
}

const GlobalOptions& CommandLine::options() const
{
    return mPrivate->mOptions;
}

const CommandSyntax::Work& CommandLine::work() const
{
    return mPrivate->mWork;
}

const std::string& CommandLine::text() const
{
    return mPrivate->mText;
}

std::string CommandLine::usage(const std::string& reason) const
{
    return mPrivate->usage(reason);
}
