#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/orv-library/Command.h"
#include "apps/orv-library/GlobalOptions.h"

/// Reads the command line. Only this class and `OptionSyntax` use the parsing library.
class CommandLine
{
public:
    enum class Outcome
    {
        Run,        ///< do `work` with `options`
        Help,       ///< print `text` to standard output
        WrongUsage, ///< print `text` to standard error
    };

    explicit CommandLine(const CommandList& commands);
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// @param arguments without the program's name
    Outcome parse(const std::vector<std::string>& arguments);

    const GlobalOptions& options() const;
    const CommandSyntax::Work& work() const;
    const std::string& text() const;
    /// Two lines about wrong usage of the given command: the reason, and where its help is.
    std::string usage(const std::string& reason) const;

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};
