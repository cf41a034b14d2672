#include "apps/orv-library/Command.h"
#include "apps/orv-library/LogCommand.h"
#include "apps/orv-library/PathsCommand.h"

CommandList allCommands()
{
    CommandList commands;
    commands.push_back(std::make_unique<PathsCommand>());
    commands.push_back(std::make_unique<LogCommand>());
    return commands;
}
