#pragma once

#include <memory>

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

    const OrvHost::ArchiveImport::Result& result() const { return mResult; }
    /// From now on, undoing only takes the command off the stack.
    void retire() const { *mIsRetired = true; }

    void redo() override {}
    void undo() override;

private:
    ImportController& mImports;
    OrvHost::ArchiveImport::Result mResult;
    std::shared_ptr<bool> mIsRetired = std::make_shared<bool>(false);
};
