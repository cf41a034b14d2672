#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class Session;
enum class ExitStatus;

/// The options and arguments of a command. If an option is not given, its variable keeps its value. Values
/// are used byte for byte; empty ones are refused. Numbers must be plain decimal and fit into their type.
class CommandSyntax
{
public:
    using Work = std::function<ExitStatus(Session&)>;

    enum class Presence
    {
        Optional,
        Required
    };

    virtual ~CommandSyntax() = default;

    /// An option without a value, such as "--core-only".
    virtual void flag(const std::string& name, bool& target, const std::string& help) = 0;
    /// An option with one value, such as "--url". If it is given several times, the last value counts.
    /// @param valueName the name of the value in the help, in capitals
    virtual void option(const std::string& name, std::string& target, const std::string& valueName,
                        const std::string& help, Presence presence = Presence::Optional) = 0;
    virtual void option(const std::string& name, std::int64_t& target, const std::string& valueName,
                        const std::string& help, Presence presence = Presence::Optional) = 0;
    /// An option that may be given several times, each with one value.
    virtual void list(const std::string& name, std::vector<std::string>& target, const std::string& valueName,
                      const std::string& help) = 0;
    /// At most one of the two options may be given.
    virtual void exclusive(const std::string& first, const std::string& second) = 0;
    /// One argument by position, such as "SOURCE".
    virtual void argument(const std::string& valueName, std::string& target, const std::string& help,
                          Presence presence = Presence::Required) = 0;
    virtual void argument(const std::string& valueName, std::int64_t& target, const std::string& help,
                          Presence presence = Presence::Required) = 0;
    /// All further arguments.
    virtual void arguments(const std::string& valueName, std::vector<std::string>& target,
                           const std::string& help, Presence presence = Presence::Optional) = 0;

    /// An action of the command, such as "show" in "log show". The user must give one.
    /// @return the syntax of the action, owned by this object
    virtual CommandSyntax& action(const std::string& name, const std::string& summary) = 0;
    /// The same, but the command also works without an action.
    virtual CommandSyntax& optionalAction(const std::string& name, const std::string& summary) = 0;
    /// The work for this command or action.
    virtual void runs(Work work) = 0;
};
