#pragma once

#include <QObject>

class ImportController;
class QAction;
class QUndoStack;

/// Keeps the actions "Undo" and "Redo" true where the stack does not. An import that cannot be taken back any
/// more leaves the stack, and "Undo" says why in its tool tip. Lives on the interface thread, as long as the
/// window.
class UndoCare : public QObject
{
    Q_OBJECT

public:
    /// @param undo, actions and imports outlive the object
    UndoCare(QUndoStack& undo, QAction& undoAction, const QAction& redoAction, ImportController& imports,
             QObject* parent);

    /// Looks whether the last command can still be undone.
    void look();

private:
    void refreshRedo();

    QUndoStack& mUndo;
    QAction& mUndoAction;
    ImportController& mImports;
    QString mReason;       ///< why an import left the stack
    int mReasonIndex = -1; ///< the index of the stack that it holds for
};
