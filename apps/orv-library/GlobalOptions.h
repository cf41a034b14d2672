#pragma once

#include <string>

/// How progress is shown on standard error.
enum class ProgressMode
{
    Automatic, ///< a bar on a terminal, plain lines otherwise
    Bar,
    Plain,
    None
};

/// The options of every command.
struct GlobalOptions
{
    std::string root; ///< empty: the default root
    bool json = false;
    ProgressMode progress = ProgressMode::Automatic;
    std::string traceFile; ///< empty: no trace
};
