#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class Session;
enum class ExitStatus;

/// The options and arguments of a command. Every text that is bound keeps its value when the option is not
/// given. Values are taken byte for byte; an empty one is refused. Numbers are plain decimal and refused when
/// they do not fit.
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
    /// An option with one value, such as "--url"; of several the last one counts.
    /// @param valueName how the help calls the value, in capitals
    virtual void option(const std::string& name, std::string& target, const std::string& valueName,
                        const std::string& help, Presence presence = Presence::Optional) = 0;
    virtual void option(const std::string& name, std::int64_t& target, const std::string& valueName,
                        const std::string& help, Presence presence = Presence::Optional) = 0;
    /// An option that may be repeated, each time with one value.
    virtual void list(const std::string& name, std::vector<std::string>& target, const std::string& valueName,
                      const std::string& help) = 0;
    /// Two options of which at most one may be given.
    virtual void exclusive(const std::string& first, const std::string& second) = 0;
    /// One argument by position, such as "SOURCE".
    virtual void argument(const std::string& valueName, std::string& target, const std::string& help,
                          Presence presence = Presence::Required) = 0;
    virtual void argument(const std::string& valueName, std::int64_t& target, const std::string& help,
                          Presence presence = Presence::Required) = 0;
    /// All further arguments.
    virtual void arguments(const std::string& valueName, std::vector<std::string>& target,
                           const std::string& help, Presence presence = Presence::Optional) = 0;

    /// An action of the command, such as "show" of "log"; one of them must be given.
    /// @return the syntax of the action, owned by this one
    virtual CommandSyntax& action(const std::string& name, const std::string& summary) = 0;
    /// The same for a command that does something without an action, too.
    virtual CommandSyntax& optionalAction(const std::string& name, const std::string& summary) = 0;
    /// The work to do when this command, or this action, was given.
    virtual void runs(Work work) = 0;
};
