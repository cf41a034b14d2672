#include "apps/orv-library/Command.h"
#include "apps/orv-library/HelpCommand.h"
#include "apps/orv-library/PathsCommand.h"
#include "apps/orv-library/SettingsCommand.h"
#include "apps/orv-library/health/DoctorCommand.h"
#include "apps/orv-library/health/LogCommand.h"
#include "apps/orv-library/health/RunsCommand.h"
#include "apps/orv-library/health/StatusCommand.h"
#include "apps/orv-library/health/VerifyCommand.h"
#include "apps/orv-library/history/HistoryCommand.h"
#include "apps/orv-library/history/HoldCommand.h"
#include "apps/orv-library/history/InfoCommand.h"
#include "apps/orv-library/history/ListCommand.h"
#include "apps/orv-library/history/NewsCommand.h"
#include "apps/orv-library/history/RestoreCommand.h"
#include "apps/orv-library/imports/ImportCommand.h"
#include "apps/orv-library/imports/PackCommand.h"
#include "apps/orv-library/imports/UndoCommand.h"
#include "apps/orv-library/imports/UnpackCommand.h"
#include "apps/orv-library/records/FiltersCommand.h"
#include "apps/orv-library/records/ManufacturersCommand.h"
#include "apps/orv-library/records/StylesCommand.h"
#include "apps/orv-library/service/PublishCommand.h"
#include "apps/orv-library/service/SampleCommand.h"
#include "apps/orv-library/service/ServeCommand.h"
#include "apps/orv-library/update/CheckCommand.h"
#include "apps/orv-library/update/UpdateCommand.h"

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
