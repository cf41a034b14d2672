#include "apps/orv-browser/own/OwnCommand.h"

#include <utility>

#include "apps/orv-browser/own/OwnLibraries.h"

OwnCommand::OwnCommand(OwnLibraries& libraries, const QString& text, OwnStep forward, OwnStep back)
    : QUndoCommand(text),
      mLibraries(libraries),
      mForward(std::move(forward)),
      mBack(std::move(back)),
      mHasFailed(std::make_shared<bool>(false))
{
}

/// A redo that removed its command would leave "Redo" enabled: Qt does not tell of it. So the next undo does.
void OwnCommand::redo()
{
    if (!std::exchange(mIsFresh, false) && !*mHasFailed)
        take(mForward, [](const QString& why) { return OwnLibraries::tr("Not done again: %1").arg(why); });
}

void OwnCommand::undo()
{
    take(mBack, [](const QString& why) { return OwnLibraries::tr("Not undone: %1").arg(why); });
}

void OwnCommand::take(const OwnStep& step, const std::function<QString(const QString&)>& failure)
{
    setObsolete(*mHasFailed);
    if (!*mHasFailed)
        mLibraries.take(step, failure, [failed = mHasFailed](bool isDone) { *failed = !isDone; });
}
