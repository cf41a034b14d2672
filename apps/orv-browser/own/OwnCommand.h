#pragma once

#include <functional>
#include <memory>

#include <QUndoCommand>

class OwnLibraries;

/// A step forward or back in the own libraries.
struct OwnStep
{
    std::function<void()> work; ///< off the interface thread; throws std::runtime_error when it fails
    std::function<void()> done; ///< afterwards on the interface thread
    QString told;               ///< a sentence for people
};

/// A change of the own libraries on the undo stack. It is made before it comes there. A step that fails ends
/// it: it leaves the stack when its turn comes again. Lives on the interface thread.
class OwnCommand : public QUndoCommand
{
public:
    /// @param libraries make the steps, one after the other; they outlive the command
    OwnCommand(OwnLibraries& libraries, const QString& text, OwnStep forward, OwnStep back);

    void redo() override;
    void undo() override;

private:
    void take(const OwnStep& step, const std::function<QString(const QString&)>& failure);

    OwnLibraries& mLibraries;
    OwnStep mForward;
    OwnStep mBack;
    bool mIsFresh = true;
    std::shared_ptr<bool> mHasFailed;
};
