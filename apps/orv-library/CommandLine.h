#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/orv-library/Command.h"
#include "apps/orv-library/GlobalOptions.h"

/// Reads the command line. The only place that knows the parsing library.
class CommandLine
{
public:
    enum class Outcome
    {
        Run,        ///< `work` and `options` are what the user asked for
        Help,       ///< `text` goes to standard output
        WrongUsage, ///< `text` goes to standard error
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
    /// The two lines for wrong usage of the command that was given: the reason, and where its help is.
    std::string usage(const std::string& reason) const;

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};
