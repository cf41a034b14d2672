#include "apps/orv-browser/UndoCare.h"

#include <QAction>
#include <QUndoStack>

#include "apps/orv-browser/activities/ImportCommand.h"
#include "apps/orv-browser/activities/ImportController.h"

UndoCare::UndoCare(QUndoStack& undo, QAction& undoAction, const QAction& redoAction,
                   ImportController& imports, QObject* parent)
    : QObject(parent), mUndo(undo), mUndoAction(undoAction), mImports(imports)
{
    // The stack is still at work when it tells of a new index.
    connect(&mUndo, &QUndoStack::indexChanged, this, &UndoCare::look, Qt::QueuedConnection);
    connect(&mImports, &ImportController::takenBack, this, &UndoCare::look);
    connect(&redoAction, &QAction::triggered, this, &UndoCare::refreshRedo);
    look();
}

void UndoCare::look()
{
    if (mUndo.index() != mReasonIndex)
        mReason.clear();
    while (mUndo.canUndo()) {
        const auto* import = dynamic_cast<const ImportCommand*>(mUndo.command(mUndo.index() - 1));
        const QString problem = import ? mImports.whyNotTakenBack(import->result()) : QString();
        if (problem.isEmpty())
            break;
        mReason = problem;
        import->retire();
        mUndo.undo(); // only takes the command off the stack
    }
    mReasonIndex = mUndo.index();
    mUndoAction.setToolTip(mReason.isEmpty() && !mUndo.canUndo() ? tr("There is nothing to undo.") : mReason);
}

/// A command that removes itself while it is done again leaves "Redo" as it was: Qt does not tell of it.
void UndoCare::refreshRedo()
{
    Q_EMIT mUndo.canRedoChanged(mUndo.canRedo());
    Q_EMIT mUndo.redoTextChanged(mUndo.redoText());
}
