#include "apps/orv-library/CheckCommand.h"
#include "apps/orv-library/Command.h"
#include "apps/orv-library/DoctorCommand.h"
#include "apps/orv-library/FiltersCommand.h"
#include "apps/orv-library/HelpCommand.h"
#include "apps/orv-library/HistoryCommand.h"
#include "apps/orv-library/HoldCommand.h"
#include "apps/orv-library/ImportCommand.h"
#include "apps/orv-library/InfoCommand.h"
#include "apps/orv-library/ListCommand.h"
#include "apps/orv-library/LogCommand.h"
#include "apps/orv-library/ManufacturersCommand.h"
#include "apps/orv-library/NewsCommand.h"
#include "apps/orv-library/PackCommand.h"
#include "apps/orv-library/PathsCommand.h"
#include "apps/orv-library/PublishCommand.h"
#include "apps/orv-library/RestoreCommand.h"
#include "apps/orv-library/RunsCommand.h"
#include "apps/orv-library/SampleCommand.h"
#include "apps/orv-library/ServeCommand.h"
#include "apps/orv-library/SettingsCommand.h"
#include "apps/orv-library/StatusCommand.h"
#include "apps/orv-library/StylesCommand.h"
#include "apps/orv-library/UndoCommand.h"
#include "apps/orv-library/UnpackCommand.h"
#include "apps/orv-library/UpdateCommand.h"
#include "apps/orv-library/VerifyCommand.h"

CommandList allCommands()
{
    CommandList commands;
    commands.push_back(std::make_unique<PathsCommand>());
    commands.push_back(std::make_unique<UpdateCommand>());
    commands.push_back(std::make_unique<ListCommand>());
    commands.push_back(std::make_unique<InfoCommand>());
    commands.push_back(std::make_unique<HistoryCommand>());
    commands.push_back(std::make_unique<RestoreCommand>());
    commands.push_back(std::make_unique<HoldCommand>());
    commands.push_back(std::make_unique<ReleaseCommand>());
    commands.push_back(std::make_unique<NewsCommand>());
    commands.push_back(std::make_unique<UnpackCommand>());
    commands.push_back(std::make_unique<ImportCommand>());
    commands.push_back(std::make_unique<UndoCommand>());
    commands.push_back(std::make_unique<PackCommand>());
    commands.push_back(std::make_unique<FiltersCommand>());
    commands.push_back(std::make_unique<ManufacturersCommand>());
    commands.push_back(std::make_unique<LogCommand>());
    commands.push_back(std::make_unique<StatusCommand>());
    commands.push_back(std::make_unique<VerifyCommand>());
    commands.push_back(std::make_unique<PublishCommand>());
    commands.push_back(std::make_unique<SampleCommand>());
    commands.push_back(std::make_unique<ServeCommand>());
    commands.push_back(std::make_unique<StylesCommand>());
    commands.push_back(std::make_unique<CheckCommand>());
    commands.push_back(std::make_unique<RunsCommand>());
    commands.push_back(std::make_unique<DoctorCommand>());
    commands.push_back(std::make_unique<SettingsCommand>());
    commands.push_back(std::make_unique<HelpCommand>());
    return commands;
}
