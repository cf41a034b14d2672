#include "apps/orv-browser/activities/ImportCommand.h"

#include "apps/orv-browser/activities/ImportController.h"

ImportCommand::ImportCommand(ImportController& imports, const OrvHost::ArchiveImport::Result& result)
    : QUndoCommand(ImportController::tr("Import")), mImports(imports), mResult(result)
{
}

void ImportCommand::undo()
{
    setObsolete(*mIsRetired || mImports.takeBack(mResult));
}
