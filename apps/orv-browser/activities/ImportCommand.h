#pragma once

#include <QUndoCommand>

#include "OrvHost/imports/ArchiveImport.h"

class ImportController;

/// An import on the undo stack. It is done before it comes there. Once it is taken back it leaves the stack,
/// because the archive may be gone by then.
class ImportCommand : public QUndoCommand
{
public:
    /// @param imports outlives the command
    ImportCommand(ImportController& imports, const OrvHost::ArchiveImport::Result& result);

    void redo() override {}
    void undo() override;

private:
    ImportController& mImports;
    OrvHost::ArchiveImport::Result mResult;
};
