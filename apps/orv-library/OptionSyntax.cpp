#include "apps/orv-library/OptionSyntax.h"

#include <algorithm>
#include <charconv>

#include <CLI/CLI.hpp>

namespace {

constexpr char kMark = '\0';

/// Reads plain decimal. The parsing library itself would read "010" as eight.
bool readNumber(const std::string& text, std::int64_t& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

/// Binds the value of `option` to a number.
void bindNumber(CLI::Option* option, std::int64_t& target)
{
    option->check([&target](const std::string& text) {
        return readNumber(text, target) ? std::string() : "'" + text + "' is not a number that can be used";
    });
    option->transform(OptionSyntax::unprotected);
}

} // namespace

std::string OptionSyntax::protectedWord(std::string word)
{
    if (word.size() > 1 && word.front() == '[' && word.back() == ']')
        word += kMark;
    return word;
}

std::string OptionSyntax::unprotected(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), kMark), text.end());
    return text;
}

CLI::Option* OptionSyntax::takesText(CLI::Option* option)
{
    // A transformation comes before a check.
    return option
        ->check([](const std::string& value) {
            return value.empty() ? std::string("the value must not be empty") : std::string();
        })
        ->transform(unprotected);
}

void OptionSyntax::flag(const std::string& name, bool& target, const std::string& help)
{
    mApp.add_flag(name, target, help);
}

void OptionSyntax::option(const std::string& name, std::string& target, const std::string& valueName,
                          const std::string& help, Presence presence)
{
    CLI::Option* option = takesText(mApp.add_option(name, target, help));
    option->type_name(valueName)->take_last()->required(presence == Presence::Required);
}

void OptionSyntax::option(const std::string& name, std::int64_t& target, const std::string& valueName,
                          const std::string& help, Presence presence)
{
    CLI::Option* option = mApp.add_option(name, help);
    option->type_name(valueName)->expected(1)->take_last()->required(presence == Presence::Required);
    bindNumber(option, target);
}

void OptionSyntax::list(const std::string& name, std::vector<std::string>& target,
                        const std::string& valueName, const std::string& help)
{
    takesText(mApp.add_option(name, target, help))->type_name(valueName)->allow_extra_args(false);
}

void OptionSyntax::exclusive(const std::string& first, const std::string& second)
{
    mApp.get_option(first)->excludes(mApp.get_option(second));
}

void OptionSyntax::argument(const std::string& valueName, std::string& target, const std::string& help,
                            Presence presence)
{
    CLI::Option* option = takesText(mApp.add_option(valueName, target, help));
    option->type_name("")->required(presence == Presence::Required);
}

void OptionSyntax::argument(const std::string& valueName, std::int64_t& target, const std::string& help,
                            Presence presence)
{
    CLI::Option* option = mApp.add_option(valueName, help);
    option->type_name("")->expected(1)->required(presence == Presence::Required);
    bindNumber(option, target);
}

void OptionSyntax::arguments(const std::string& valueName, std::vector<std::string>& target,
                             const std::string& help, Presence presence)
{
    CLI::Option* option = takesText(mApp.add_option(valueName, target, help));
    option->type_name("")->required(presence == Presence::Required);
}

CommandSyntax& OptionSyntax::action(const std::string& name, const std::string& summary)
{
    mApp.require_subcommand(1);
    return optionalAction(name, summary);
}

CommandSyntax& OptionSyntax::optionalAction(const std::string& name, const std::string& summary)
{
    mActions.emplace_back(*mApp.add_subcommand(name, summary)->group(kCommandGroup), mChosen);
    return mActions.back();
}

void OptionSyntax::runs(Work work)
{
    // An action comes before its command.
    mApp.final_callback([this, work = std::move(work)] {
        if (!mChosen)
            mChosen = work;
    });
}
