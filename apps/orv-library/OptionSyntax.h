#pragma once

#include <list>

#include "apps/orv-library/CommandSyntax.h"

namespace CLI {
class App;
class Option;
} // namespace CLI

/// Declares the options and arguments of a command or action to the parsing library.
class OptionSyntax : public CommandSyntax
{
public:
    static constexpr const char* kCommandGroup = "Commands";

    /// @param chosen gets the work of the command or action that the user gives
    OptionSyntax(CLI::App& app, Work& chosen) : mApp(app), mChosen(chosen) {}

    /// Marks a word in brackets, such as "[a,b]", which the parsing library would split into several. The
    /// mark is a zero byte at the end; no word that a program is started with has one.
    static std::string protectedWord(std::string word);
    /// Takes that mark out of a value or a message.
    static std::string unprotected(std::string text);

    /// Declares the value of an option as text: takes the mark away and refuses an empty value. That comes
    /// from a variable that a script has not set, and no command can use it.
    static CLI::Option* takesText(CLI::Option* option);

    void flag(const std::string& name, bool& target, const std::string& help) override;
    void option(const std::string& name, std::string& target, const std::string& valueName,
                const std::string& help, Presence presence) override;
    void option(const std::string& name, std::int64_t& target, const std::string& valueName,
                const std::string& help, Presence presence) override;
    void list(const std::string& name, std::vector<std::string>& target, const std::string& valueName,
              const std::string& help) override;
    void exclusive(const std::string& first, const std::string& second) override;
    void argument(const std::string& valueName, std::string& target, const std::string& help,
                  Presence presence) override;
    void argument(const std::string& valueName, std::int64_t& target, const std::string& help,
                  Presence presence) override;
    void arguments(const std::string& valueName, std::vector<std::string>& target, const std::string& help,
                   Presence presence) override;
    CommandSyntax& action(const std::string& name, const std::string& summary) override;
    CommandSyntax& optionalAction(const std::string& name, const std::string& summary) override;
    void runs(Work work) override;

private:
    CLI::App& mApp;
    Work& mChosen;
    std::list<OptionSyntax> mActions;
};
