#pragma once

#include <list>

#include "apps/orv-library/CommandSyntax.h"

namespace CLI {
class App;
} // namespace CLI

/// Declares the options and arguments of a command or action to the parsing library.
class OptionSyntax : public CommandSyntax
{
public:
    static constexpr const char* kCommandGroup = "Commands";

    /// @param chosen gets the work of the command or action that the user gives
    OptionSyntax(CLI::App& app, Work& chosen) : mApp(app), mChosen(chosen) {}

    /// Refuses an empty value. It comes from a variable that a script has not set, and no command can use it.
    /// @return the reason; empty if the value is not
    static std::string isGiven(const std::string& value);

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
