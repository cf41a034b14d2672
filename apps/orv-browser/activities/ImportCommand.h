#pragma once

#include <QUndoCommand>

#include "OrvHost/imports/ArchiveImport.h"

class ImportController;

/// A finished import on the undo stack. When it is undone, it leaves the stack, because the archive may not
/// exist any more.
class ImportCommand : public QUndoCommand
{
public:
    /// @param imports must outlive the command
    ImportCommand(ImportController& imports, const OrvHost::ArchiveImport::Result& result);

    void redo() override {}
    void undo() override;

private:
    ImportController& mImports;
    OrvHost::ArchiveImport::Result mResult;
};
